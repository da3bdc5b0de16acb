// Runs one work a number of times, for a tool that counts instructions: the difference between two numbers of rounds is
// the work alone.
#include <exception>
#include <iostream>
#include <map>

#include "workload.h"

int main(int argc, char** argv) {
    constexpr int wantedArguments = 5;
    if (argc != wantedArguments) {
        std::cerr << "usage: bench-count service|limit|compiled update|merge|decide ACCOUNTS ROUNDS\n";
        return 2;
    }
    try {
        const std::map<std::string, decltype(&bench::makeLimitWorkload)> sides{
            {"service", bench::makeServiceWorkload},
            {"limit", bench::makeLimitWorkload},
            {"compiled", bench::makeCompiledWorkload}};
        const auto workload = sides.at(argv[1])(argv[2], std::stoi(argv[3]));
        for (int round = std::stoi(argv[4]); round > 0; --round) {
            workload->run();
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
