// Starts the service, the bare process and the bare process on the platform on a watch of their own, and tells how long
// each takes to be there, what memory it holds and what it does while it idles. One line per value: NAME PROCESS
// NUMBER.
#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "c_owners.h"
#include "device/bus_connection.h"
#include "device/device.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr char serviceId[] = "com.velmor.tesk-agent";
constexpr char bareId[] = "bench.bare";
constexpr char platformId[] = "bench.platform";

/// A program that is measured: how it is called, and the bus name that says that it is ready.
struct Program {
    std::string label;
    std::string applicationId;
    std::vector<std::string> command;
    std::string readyName;
};

/// Waits on the bus for names to come.
class NameWatch {
public:
    NameWatch(GDBusConnection* connection, const std::string& name)
        : watch_(g_bus_watch_name_on_connection(connection, name.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE, onAppeared,
                                                onVanished, this, nullptr)) {}
    NameWatch(const NameWatch&) = delete;
    NameWatch& operator=(const NameWatch&) = delete;
    ~NameWatch() { g_bus_unwatch_name(watch_); }

    void waitUntilOwned(bool owned) const {
        while (!known_ || owned_ != owned) {
            g_main_context_iteration(nullptr, TRUE);
        }
    }

private:
    static void onAppeared(GDBusConnection* /*bus*/, const char* /*name*/, const char* /*owner*/, gpointer self) {
        static_cast<NameWatch*>(self)->set(true);
    }
    static void onVanished(GDBusConnection* /*bus*/, const char* /*name*/, gpointer self) {
        static_cast<NameWatch*>(self)->set(false);
    }
    void set(bool owned) {
        known_ = true;
        owned_ = owned;
    }

    bool known_ = false;
    bool owned_ = false;
    guint watch_;
};

/// The form that GLib takes lists of texts in; they stay the caller's.
std::vector<const char*> pointers(const std::vector<std::string>& texts) {
    std::vector<const char*> list(texts.size() + 1, nullptr);
    std::transform(texts.begin(), texts.end(), list.begin(), [](const std::string& text) { return text.c_str(); });
    return list;
}

/// A running program; ends with this object.
class Running {
public:
    Running(const deskwatch::Device& watch, GDBusConnection* bus, const Program& program)
        : name_(bus, program.readyName) {
        name_.waitUntilOwned(false);
        auto environment = watch.appEnvironment(program.applicationId);
        environment["DLOG_LEVEL"] = "S";
        const auto assignments = deskwatch::assignments(environment);
        auto variables = pointers(assignments);
        auto arguments = pointers(program.command);
        const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
        g_subprocess_launcher_set_environ(launcher.get(), const_cast<char**>(variables.data()));
        GError* error = nullptr;
        const auto start = Clock::now();
        process_.reset(g_subprocess_launcher_spawnv(launcher.get(), arguments.data(), &error));
        if (process_ == nullptr) {
            throw std::runtime_error("bench: cannot start " + program.command.front() + ": " + c::takeMessage(error));
        }
        name_.waitUntilOwned(true);
        startUp_ = Clock::now() - start;
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        g_subprocess_send_signal(process_.get(), SIGTERM);
        g_subprocess_wait(process_.get(), nullptr, nullptr);
    }

    double startUpMilliseconds() const { return std::chrono::duration<double, std::milli>(startUp_).count(); }
    std::string pid() const { return g_subprocess_get_identifier(process_.get()); }

private:
    NameWatch name_;
    c::ObjectOwner<GSubprocess> process_;
    Clock::duration startUp_{};
};

void print(const std::string& value, const Program& program, double number) {
    std::cout << value << ' ' << program.label << ' ' << number << std::endl;
}

double startUp(const deskwatch::Device& watch, GDBusConnection* bus, const Program& program) {
    return Running(watch, bus, program).startUpMilliseconds();
}

/// The programs take turns, so that what else the machine does reaches all alike.
void measureStartUp(const deskwatch::Device& watch, GDBusConnection* bus, const std::vector<Program>& programs) {
    constexpr std::size_t rounds = 31;
    std::vector<std::vector<double>> times(programs.size());
    for (std::size_t round = 0; round <= rounds; ++round) {
        for (std::size_t program = 0; program < programs.size(); ++program) {
            const double time = startUp(watch, bus, programs[program]);
            if (round > 0) { // the first one fills the caches
                times[program].push_back(time);
            }
        }
    }
    for (std::size_t program = 0; program < programs.size(); ++program) {
        std::sort(times[program].begin(), times[program].end());
        print("start-up", programs[program], times[program][rounds / 2]);
    }
}

/// How often each thread of a process has waited so far.
std::map<std::string, double> waitsByThread(const std::string& pid) {
    const std::string field = "voluntary_ctxt_switches:";
    std::map<std::string, double> waits;
    for (const auto& thread : fs::directory_iterator("/proc/" + pid + "/task")) {
        std::ifstream status(thread.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind(field, 0) == 0) {
                waits[thread.path().filename()] = std::stod(line.substr(field.size()));
            }
        }
    }
    return waits;
}

void measureMemory(const Program& program, const std::string& pid) {
    std::ifstream rollup("/proc/" + pid + "/smaps_rollup");
    for (std::string line; std::getline(rollup, line);) {
        for (const std::string field : {"Rss", "Pss", "Private_Clean", "Anonymous"}) {
            if (line.rfind(field + ":", 0) == 0) {
                print(field, program, std::stod(line.substr(field.size() + 1)));
            }
        }
    }
    print("threads", program, static_cast<double>(std::distance(fs::directory_iterator("/proc/" + pid + "/task"), {})));
}

using RunningPrograms = std::vector<std::unique_ptr<Running>>;

/// How often the threads of each process were woken; a thread that ends meanwhile is not counted.
void measureWakeUps(const std::vector<Program>& programs, const RunningPrograms& running, int seconds) {
    std::vector<std::map<std::string, double>> before;
    for (const auto& process : running) {
        before.push_back(waitsByThread(process->pid()));
    }
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    for (std::size_t program = 0; program < programs.size(); ++program) {
        double sum = 0;
        for (const auto& [thread, waits] : waitsByThread(running[program]->pid())) {
            sum += waits - before[program][thread];
        }
        print("wake-ups", programs[program], sum);
    }
}

/// What a thread was in when it was taken hold of, and what was cut off at the end, is no call of the measured time.
bool isCall(const std::string& line) {
    constexpr std::array<const char*, 4> marks{"resumed", "<unfinished", "restart_syscall", "<detached"};
    return std::none_of(marks.begin(), marks.end(),
                        [&](const char* mark) { return line.find(mark) != std::string::npos; });
}

/// How many system calls the threads of each process made.
void measureSystemCalls(const std::vector<Program>& programs, const RunningPrograms& running, int seconds,
                        const fs::path& folder) {
    const auto trace = [&](const Running& process) { return (folder / ("calls-" + process.pid())).string(); };
    std::string command;
    for (const auto& process : running) {
        command += "timeout -s INT " + std::to_string(seconds) + " strace -qq -f -o " + trace(*process) + " -p " +
                   process->pid() + " 2>/dev/null & ";
    }
    if (std::system((command + "wait").c_str()) != 0) {
        throw std::runtime_error("bench: cannot run strace");
    }
    for (std::size_t program = 0; program < programs.size(); ++program) {
        std::ifstream calls(trace(*running[program]));
        if (!calls) {
            throw std::runtime_error("bench: strace could not trace " + programs[program].label);
        }
        int count = 0;
        for (std::string line; std::getline(calls, line);) {
            count += isCall(line) ? 1 : 0;
        }
        print("system-calls", programs[program], count);
    }
}

void measure(const fs::path& binaries, const fs::path& folder, int idleSeconds) {
    const std::vector<Program> programs{
        {"service",
         serviceId,
         {(binaries / "tesk-agent").string()},
         std::string(serviceId) + ".port_eas_2ditpolicy_2dport"},
        {"platform",
         platformId,
         {(binaries / "bench-platform-process").string()},
         std::string(platformId) + ".port_port"},
        {"bare", bareId, {(binaries / "bench-bare-process").string(), bareId, (folder / "bare.db").string()}, bareId},
    };
    const deskwatch::BootedDevice watch(folder / "watch",
                                        {{serviceId, programs[0].command}, {platformId, programs[1].command}});
    const auto bus = deskwatch::connectToBus(watch->busAddress(), deskwatch::busPatience);
    measureStartUp(*watch, bus.get(), programs);

    RunningPrograms running;
    for (const auto& program : programs) {
        running.push_back(std::make_unique<Running>(*watch, bus.get(), program));
    }
    std::this_thread::sleep_for(std::chrono::seconds(1)); // what start-up left to do is over by then
    for (std::size_t program = 0; program < programs.size(); ++program) {
        measureMemory(programs[program], running[program]->pid());
    }
    measureWakeUps(programs, running, idleSeconds);
    measureSystemCalls(programs, running, idleSeconds, folder);
}

} // namespace

int main(int argc, char** argv) {
    constexpr int wantedArguments = 4;
    if (argc != wantedArguments) {
        std::cerr << "usage: bench-processes FOLDER-OF-PROGRAMS FOLDER IDLE-SECONDS\n";
        return 2;
    }
    try {
        measure(fs::absolute(argv[1]), fs::absolute(argv[2]), std::max(1, std::stoi(argv[3])));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
