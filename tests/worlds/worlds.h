#ifndef WORLDS_WORLDS_H
#define WORLDS_WORLDS_H

#include <iostream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// The ends of what a field can hold.
constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

/** Counts the worlds of a test and keeps what did not hold in them. Its end tells, and fails the test if need be. */
class Worlds {
public:
    /** `least` is the number of worlds below which combinations would have been lost. */
    explicit Worlds(long least) : least_(least) {}

    ~Worlds() {
        for (const auto& flaw : flaws_) {
            ADD_FAILURE() << flaw;
        }
        EXPECT_GE(count_, least_);
        std::cout << "worlds: " << count_ << (flaws_.empty() ? ", all as stated" : "") << '\n';
    }

    Worlds(const Worlds&) = delete;
    Worlds& operator=(const Worlds&) = delete;

    /** One more world. What does not hold in it is put into words only then. */
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
