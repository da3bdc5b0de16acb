// Writes the inputs to start from: make-seeds SAMPLES FOLDER fills FOLDER/<target>/ for each target.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <random>
#include <string>

#include "database_seeds.h"
#include "host_bus_seeds.h"

namespace {

using Seeds = std::map<std::string, std::string>;

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Seeds messageSeeds(const std::filesystem::path& samples) {
    Seeds seeds;
    for (const auto& entry : std::filesystem::directory_iterator(samples)) {
        if (entry.path().extension() == ".json") {
            seeds[entry.path().filename().string()] = contentsOf(entry.path());
        }
    }
    return seeds;
}

/// A policy in each of the formats.
Seeds policySeeds(const std::filesystem::path& samples) {
    Seeds seeds{{"message", contentsOf(samples / "hardened.json")},
                {"document", contentsOf(samples / "provision-limits-without-password.xml")}};
    for (const auto& entry : std::filesystem::directory_iterator(samples / "policies")) {
        seeds[entry.path().filename().string()] = contentsOf(entry.path());
    }
    return seeds;
}

Seeds requestSeeds(const Seeds& messages) {
    Seeds seeds{{"delete", "req_delete_account\n1"},
                {"password", "chk_password_policy\n"},
                {"encryption", "chk_device_encryption_policy\n"},
                {"no-argument", "req_update_policy"}};
    for (const auto& [name, text] : messages) {
        seeds[name] = "req_update_policy\n" + text;
    }
    return seeds;
}

/// Bytes without a meaning, the same in every run, for the target that makes decisions of them.
Seeds decisionSeeds() {
    constexpr std::size_t count = 16;
    std::mt19937 engine; // NOLINT(cert-msc32-c,cert-msc51-cpp): the default seed is what makes the runs equal
    Seeds seeds;
    for (std::size_t i = 1; i <= count; ++i) {
        std::string bytes(i * count, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(engine());
        }
        seeds["decisions-" + std::to_string(i)] = bytes;
    }
    return seeds;
}

void write(const Seeds& seeds, const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const auto& [name, content] : seeds) {
        std::ofstream(folder / name, std::ios::binary) << content;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make-seeds SAMPLES FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder(argv[2]);
    const Seeds messages = messageSeeds(argv[1]);
    write(messages, folder / "message");
    write(requestSeeds(messages), folder / "request");
    write(fuzz::databaseSeeds(), folder / "database");
    write(fuzz::hostBusSeeds(), folder / "host-bus");
    write(decisionSeeds(), folder / "story");
    write(policySeeds(argv[1]), folder / "import");
    return 0;
}
