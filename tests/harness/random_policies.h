#ifndef RANDOM_POLICIES_H
#define RANDOM_POLICIES_H

#include <cstddef>
#include <random>
#include <string>
#include <vector>

/// Policies as no administrator would think of them: values at the edges and beyond, odd types, members left out.
class RandomPolicies {
public:
    explicit RandomPolicies(unsigned seed) : engine_(seed) {}

    /// A policy update for up to that many of the accounts 1 to 5, now and then for one that cannot be.
    std::string message(int mostAccounts);

    /// A number from the first to the last.
    int number(int first, int last) { return std::uniform_int_distribution<int>(first, last)(engine_); }

    template <typename Type>
    Type oneOf(const std::vector<Type>& choices) {
        return choices[static_cast<std::size_t>(number(0, static_cast<int>(choices.size()) - 1))];
    }

private:
    std::string entry();
    std::string policySet();

    std::mt19937 engine_;
};

#endif
