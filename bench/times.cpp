// The times of one work, of the service and of its limit. The service keeps process-wide instances, so that a process
// measures one work.
#include <benchmark/benchmark.h>

#include <exception>
#include <iostream>
#include <vector>

#include "workload.h"

namespace {

void measure(benchmark::State& state, bench::Workload* workload) {
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): the library's own loop
        workload->run();
    }
}

} // namespace

int main(int argc, char** argv) {
    constexpr int ownArguments = 3;
    if (argc < ownArguments) {
        std::cerr << "usage: bench-times update|merge|decide ACCOUNTS [--benchmark_...]\n";
        return 2;
    }
    try {
        const std::string name = argv[1];
        const int accounts = std::stoi(argv[2]);
        const auto service = bench::makeServiceWorkload(name, accounts);
        const auto limit = bench::makeLimitWorkload(name, accounts);
        benchmark::RegisterBenchmark("service", measure, service.get())->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark("limit", measure, limit.get())->Unit(benchmark::kMicrosecond);

        std::vector<char*> others{argv[0]};
        others.insert(others.end(), argv + ownArguments, argv + argc);
        int count = static_cast<int>(others.size());
        benchmark::Initialize(&count, others.data());
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
