#include "device/patience.h"

#include <algorithm>
#include <iostream>

namespace deskwatch {
namespace {

std::string secondsOf(std::chrono::milliseconds time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count());
}

} // namespace

NoAnswer::NoAnswer(const std::string& who, std::chrono::milliseconds patience)
    : std::runtime_error(who + " has not answered for " + secondsOf(patience) +
                         " seconds (--timeout); end what hangs with: deskwatch off --force") {}

bool tryPatiently(std::chrono::milliseconds patience, std::chrono::seconds untilNotice, const std::string& what,
                  const std::function<bool(std::chrono::milliseconds)>& attempt) {
    const auto first = std::min<std::chrono::milliseconds>(patience, untilNotice);
    if (attempt(first)) {
        return true;
    }
    if (patience == first) {
        return false;
    }
    std::cerr << "deskwatch: waiting for " + what + " for " +
                     (untilNotice.count() == 1 ? "a second" : secondsOf(untilNotice) + " seconds") + "\n"
              << std::flush;
    return attempt(patience - first);
}

} // namespace deskwatch
