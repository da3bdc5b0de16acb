#include "service_log.h"

#include <fstream>
#include <iterator>

namespace system_test {

std::string ServiceLog::text() const {
    std::ifstream file(file_);
    return {std::istreambuf_iterator<char>(file), {}};
}

int ServiceLog::count(const std::string& text) const {
    std::ifstream file(file_);
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        count += line.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

} // namespace system_test
