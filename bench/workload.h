#ifndef BENCH_WORKLOAD_H
#define BENCH_WORKLOAD_H

#include <memory>
#include <string>

namespace bench {

/// Something that is measured: made ready once, run many times.
class Workload {
public:
    Workload() = default;
    Workload(const Workload&) = delete;
    Workload& operator=(const Workload&) = delete;
    virtual ~Workload() = default;

    virtual void run() = 0;
};

/// The three works: "update" (a policy update of one stored account, up to the device), "merge" (the strongest policy
/// of that many stored accounts) and "decide" (whether the lock satisfies a policy). Throws std::runtime_error for
/// another name. There is one workload of the service per process.
std::unique_ptr<Workload> makeServiceWorkload(const std::string& name, int accounts);

/// The least that the same works need: parse the text, write the row and commit; step over the rows; compare the
/// numbers.
std::unique_ptr<Workload> makeLimitWorkload(const std::string& name, int accounts);

/// The least that "update" and "merge" need with the store's operations as they are: each compiles its statement, uses
/// it once and finalizes it, and reads every column.
std::unique_ptr<Workload> makeCompiledWorkload(const std::string& name, int accounts);

/// The text of a policy update with one account.
std::string updateMessage();

} // namespace bench

#endif
