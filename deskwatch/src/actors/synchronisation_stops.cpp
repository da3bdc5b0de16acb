#include "actors/synchronisation_stops.h"

#include <fstream>

namespace deskwatch {
namespace {

constexpr char fileName[] = "synchronisation-stops";

} // namespace

int synchronisationStops(const std::filesystem::path& data) {
    int count = 0;
    std::ifstream(data / fileName) >> count;
    return count;
}

void countSynchronisationStop(const std::filesystem::path& data) {
    const int count = synchronisationStops(data);
    const auto aside = data / (std::string(fileName) + ".new");
    if (std::ofstream(aside) << count + 1 << '\n' << std::flush) {
        std::error_code error; // a reader sees the old number or the new one
        std::filesystem::rename(aside, data / fileName, error);
    }
}

} // namespace deskwatch
