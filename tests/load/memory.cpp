#include "memory.h"

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

namespace load_test {

Memory memoryOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    std::map<std::string, long> values;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string name;
        long value = 0;
        if (fields >> name >> value) {
            values[name] = value;
        }
    }
    if (values.count("Rss:") == 0 || values.count("Private_Dirty:") == 0) {
        throw std::runtime_error("cannot read the memory of process " + std::to_string(process));
    }
    return {values["Rss:"], values["Private_Dirty:"]};
}

} // namespace load_test
