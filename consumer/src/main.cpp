#include <csignal>
#include <cstdio>
#include <cstring>

#include "TeskConsumer.h"
#include "TeskConsumerLog.h"

#ifndef TESK_VERSION // another build than ours
#define TESK_VERSION "unknown"
#endif

namespace {

/// Whoever tries the program by hand is told what it is. The platform starts it with other arguments.
bool isAnsweredByHand(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::puts("tesk-agent " TESK_VERSION);
        return true;
    }
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::puts("tesk-agent enforces Exchange ActiveSync policies on a watch. The platform starts it when it is\n"
                  "launched; it takes its requests from its message port and ends itself when nothing is left to do.\n"
                  "On a desk, deskwatch boots a watch that runs it: deskwatch --help");
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (isAnsweredByHand(argc, argv)) {
        return 0;
    }
    TESK_WARN("Hello World!");
    // a reader that went away is an error of the write, not the end of the service
    std::signal(SIGPIPE, SIG_IGN);
    auto* const consumer = TeskConsumer::getInstance();
    consumer->init();
    const int status = consumer->start(argc, argv);
    TESK_WARN("Goodbye World!");
    return status;
}
