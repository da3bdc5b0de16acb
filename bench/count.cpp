// Runs one work a number of times, for a tool that counts instructions: the difference between two numbers of rounds is
// the work alone.
#include <exception>
#include <iostream>

#include "workload.h"

int main(int argc, char** argv) {
    constexpr int wantedArguments = 5;
    if (argc != wantedArguments) {
        std::cerr << "usage: bench-count service|limit update|merge|decide ACCOUNTS ROUNDS\n";
        return 2;
    }
    try {
        const auto make = std::string(argv[1]) == "service" ? bench::makeServiceWorkload : bench::makeLimitWorkload;
        const auto workload = make(argv[2], std::stoi(argv[3]));
        for (int round = std::stoi(argv[4]); round > 0; --round) {
            workload->run();
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
