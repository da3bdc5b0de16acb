#ifndef BENCH_NULL_PLATFORM_H
#define BENCH_NULL_PLATFORM_H

#include <string>

namespace bench {

/// Names the folder, with a trailing slash, in which the service keeps its database.
void setDataPath(const std::string& path);

/// Hands a request to the port that the service has opened.
void deliver(const std::string& request, const std::string& argument);

} // namespace bench

#endif
