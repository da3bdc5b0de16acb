#include "handled.h"

#include <gtest/gtest.h>

#include <sstream>

namespace load_test {
namespace {

bool holds(const std::string& line, const char* text) {
    return line.find(text) != std::string::npos;
}

/// What stands between two texts of a line.
std::string between(const std::string& line, const std::string& begin, const std::string& end) {
    const auto from = line.find(begin) + begin.size();
    return line.substr(from, line.find(end, from) - from);
}

/// Reads the service's log, line by line.
class Reader {
public:
    void read(const std::string& line) {
        if (holds(line, "TestDbus methodName: [")) {
            requests_.diagnostic.push_back(between(line, "methodName: [", "]"));
        } else if (holds(line, "TestDbus.cpp: __handleMethodCall") && holds(line, "value: [")) {
            requests_.diagnostic.back() += " " + between(line, "value: [", "]");
        } else if (holds(line, "TeskConsumerIpcMgr.cpp: policyTest")) {
            isRelayed_ = true; // the diagnostic interface hands its request to the port
        } else if (holds(line, "__teskItpolicyReqCb") && holds(line, "Leave")) {
            end();
        } else {
            notice(line);
        }
    }

    const Requests& requests() const { return requests_; }

private:
    void notice(const std::string& line) {
        if (holds(line, "TeskConsumerItPolicyIndMsg.cpp: process") && holds(line, "Enter")) {
            kind_ = "update";
        } else if (holds(line, ": delAccount") && holds(line, "Enter")) {
            kind_ = "delete";
        } else if (holds(line, "createResponsedMsg() failed")) {
            kind_ = "malformed";
        } else if (holds(line, "Unsupported request : ")) {
            kind_ = between(line, "Unsupported request : ", "\n");
        }
    }

    void end() {
        if (!isRelayed_) {
            requests_.port.push_back(kind_);
        }
        isRelayed_ = false;
        kind_ = "other";
    }

    Requests requests_;
    std::string kind_ = "other";
    bool isRelayed_ = false;
};

} // namespace

void PrintTo(const Requests& requests, std::ostream* output) {
    *output << "port: " << testing::PrintToString(requests.port)
            << ", diagnostic: " << testing::PrintToString(requests.diagnostic);
}

Requests handledRequests(const std::string& log) {
    Reader reader;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        reader.read(line);
    }
    return reader.requests();
}

} // namespace load_test
