#include "provisioning/exchange_trace_format.h"

#include <sstream>

#include "device/plain_text.h"

namespace deskwatch::exchange_trace {

bool isTrace(const std::string& text) {
    return startsWith(text, firstLine);
}

std::string lastPolicy(const std::string& trace) {
    const std::string prefix = std::string("<") + xmlMark + " ";
    std::string last;
    std::string reply;
    bool hasPolicy = false;
    std::string lineBreaks;
    std::istringstream stream(trace + "\n\n");
    for (std::string line; std::getline(stream, line); lineBreaks += '\n') {
        if (startsWith(line, prefix)) {
            const auto xml = line.substr(prefix.size());
            hasPolicy = hasPolicy || contains(xml, "<EASProvisionDoc");
            // the declaration would have to be the first thing of all, and nobody needs it
            reply += (reply.empty() ? lineBreaks : "") + (startsWith(xml, "<?xml") ? "" : xml) + "\n";
        } else {
            last = hasPolicy ? reply : last;
            reply.clear();
            hasPolicy = false;
        }
    }
    return last;
}

} // namespace deskwatch::exchange_trace
