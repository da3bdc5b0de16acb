// Stands in for libFuzzer where the compiler has none: gives a target each of the named files, and those in the named
// folders, once.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz_target.h"

namespace {

void run(const std::filesystem::path& path) {
    std::cerr << path.string() << '\n';
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    fuzz::require(file.is_open(), "the input can be read");
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
}

/// Runs a file, or the files of a folder; returns their number.
int runAll(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        run(path);
        return 1;
    }
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        count += runAll(entry.path());
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        count += runAll(argv[i]);
    }
    std::cerr << count << " inputs\n";
    return count > 0 ? 0 : 1;
}
