#ifndef FUZZ_HOST_BUS_SEEDS_H
#define FUZZ_HOST_BUS_SEEDS_H

#include <map>
#include <string>

namespace fuzz {

/// Bus messages, settings and names as they come on a device, by name, in the form that the target for them reads.
std::map<std::string, std::string> hostBusSeeds();

} // namespace fuzz

#endif
