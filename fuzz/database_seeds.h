#ifndef FUZZ_DATABASE_SEEDS_H
#define FUZZ_DATABASE_SEEDS_H

#include <map>
#include <string>

namespace fuzz {

/// The contents of databases to start from, by name: as the service leaves them, and as a foreign hand may.
std::map<std::string, std::string> databaseSeeds();

} // namespace fuzz

#endif
