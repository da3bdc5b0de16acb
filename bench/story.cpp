// One life of the service on a platform that costs next to nothing, for tools that count instructions and memory: it
// starts with the stored accounts, gets one trigger and ends.
#include <glib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <vector>

#include "TeskConsumer.h"
#include "data_folder.h"
#include "null_platform.h"
#include "workload.h"

namespace {

constexpr char wipeOrder[] = R"({"msgId": "eas-remote-wipe", "seqId": 1, "param": {}})";

using bench::Trigger;

const std::map<std::string, Trigger>& triggers() {
    static const std::map<std::string, Trigger> byName{
        {"none", [] {}},
        {"policy", [] { bench::deliver("req_update_policy", bench::updateMessage()); }},
        {"deletion", [] { bench::deliver("req_delete_account", "1"); }},
        {"lock", [] { bench::setLock(bench::passwordLock); }},
        {"wipe", [] { bench::deliver("req_update_policy", wipeOrder); }},
    };
    return byName;
}

Trigger triggerOf(const std::string& name) {
    const auto found = triggers().find(name);
    if (found == triggers().end()) {
        throw std::runtime_error("bench: no such trigger: " + name);
    }
    return found->second;
}

/// In kilobytes, without the pages of files: those of a program that was linked a moment ago are dirty until they are
/// on the disk.
std::string privateDirtyMemory() {
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string word; rollup >> word;) {
        if (word == "Anonymous:" && rollup >> word) {
            return word;
        }
    }
    throw std::runtime_error("bench: the kernel does not tell the memory of the process");
}

/// Runs in a child process, so that its memory is not counted as the service's.
void fill(const bench::DataFolder& folder, int accounts) {
    const pid_t child = fork();
    if (child == 0) {
        folder.fill(accounts);
        std::_Exit(0);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("bench: cannot fill the database");
    }
}

/// Returns the program's exit status.
int play(int accounts, Trigger trigger, bool tellsMemory, char** argv) {
    const bench::DataFolder folder;
    if (accounts > 0) {
        fill(folder, accounts);
    }
    bench::setDataPath(folder.path());
    if (trigger == triggerOf("lock")) {
        bench::setLock(0);
    }
    bench::setStory([&] {
        g_main_context_iteration(nullptr, TRUE); // the thread that looks for a bus has found none
        bench::pullTrigger(trigger);
        if (tellsMemory) {
            std::cout << privateDirtyMemory() << '\n';
        }
    });
    auto* const service = TeskConsumer::getInstance();
    service->init();
    return service->start(1, argv) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    constexpr std::size_t wanted = 2;
    const bool tellsMemory = arguments.size() > wanted && arguments.back() == "memory";
    if (arguments.size() != (tellsMemory ? wanted + 1 : wanted)) {
        std::cerr << "usage: bench-story ACCOUNTS none|policy|deletion|lock|wipe [memory]\n"
                     "memory: print the private dirty memory after the trigger, in kilobytes\n";
        return 2;
    }
    try {
        return play(std::stoi(arguments[0]), triggerOf(arguments[1]), tellsMemory, argv);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
