#ifndef EXHAUSTIVE_EXHAUSTIVE_H
#define EXHAUSTIVE_EXHAUSTIVE_H

#include <gtest/gtest.h>

#include <iostream>
#include <limits>
#include <string>
#include <vector>

// The ends of what a field can hold.
constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

/// Counts the combinations of a test and keeps what did not hold in them. Its end tells, and fails the test if need be.
class Combinations {
public:
    /// `least` is the number of combinations below which combinations would have been lost.
    explicit Combinations(long least) : least_(least) {}

    ~Combinations() {
        for (const auto& flaw : flaws_) {
            ADD_FAILURE() << flaw;
        }
        EXPECT_GE(count_, least_);
        std::cout << "combinations: " << count_ << (flaws_.empty() ? ", all as stated" : "") << '\n';
    }

    Combinations(const Combinations&) = delete;
    Combinations& operator=(const Combinations&) = delete;

    /// One more combination. What does not hold in it is put into words only then.
    template <typename Describe>
    void add(bool holds, const Describe& describe) {
        ++count_;
        if (!holds && flaws_.size() < 20) {
            flaws_.push_back(describe());
        }
    }

private:
    const long least_;
    long count_ = 0;
    std::vector<std::string> flaws_;
};

#endif
