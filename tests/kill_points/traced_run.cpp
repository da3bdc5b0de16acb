#include "traced_run.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "child_process.h"
#include "writing_calls.h"

namespace kill_points {

namespace {

void require(bool works, const char* what) {
    if (!works) {
        throw std::runtime_error(std::string("kill points: this machine does not let a test ") + what + ": " +
                                 std::strerror(errno));
    }
}

/// Lets the kernel stop the process at its writing calls alone, which costs the others next to nothing. The process
/// makes calls of its own architecture only, so their numbers say enough.
void filterWritingCalls() {
    std::vector<sock_filter> program{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const auto& call : writingCalls()) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(call.number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    require(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "give up privileges");
    require(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0, "filter system calls (seccomp)");
}

/// Has the parent trace this process.
void becomeTraced() {
    require(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0, "trace a process (ptrace)");
    std::raise(SIGSTOP); // until the tracer is ready for what the filter sends it
    filterWritingCalls();
}

int waitFor(pid_t process, int* status) {
    int result = -1;
    do {
        result = waitpid(process, status, __WALL);
    } while (result == -1 && errno == EINTR);
    require(result != -1, "wait for its child");
    return result;
}

/// Follows a child from its first stop to its end.
class Tracer {
public:
    Tracer(pid_t child, std::string folder, const std::optional<KillPoint>& point)
        : child_(child), folder_(std::move(folder)), point_(point) {}

    TracedRun follow() {
        begin();
        while (true) {
            int status = 0;
            const pid_t thread = waitFor(-1, &status);
            if (WIFSTOPPED(status)) {
                handleStop(thread, status);
            } else if (thread == child_) {
                return {steps_, WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt};
            }
        }
    }

private:
    static constexpr int systemCallStop = SIGTRAP | 0x80;

    static int eventOf(int status) { return status >> 16; }

    void begin() const {
        int status = 0;
        waitFor(child_, &status);
        if (!WIFSTOPPED(status)) {
            throw std::runtime_error(
                "kill points: the child cannot be traced; its own words are on the standard error");
        }
        constexpr long options =
            PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE;
        require(ptrace(PTRACE_SETOPTIONS, child_, nullptr, options) == 0, "set options of a trace");
        resume(child_, PTRACE_CONT);
    }

    void handleStop(pid_t thread, int status) {
        if (eventOf(status) == PTRACE_EVENT_SECCOMP) {
            handleWritingCall(thread);
        } else if (eventOf(status) == 0 && WSTOPSIG(status) == systemCallStop) {
            kill(child_, SIGKILL); // the step has had its effect, and no other has begun
        } else {
            // a thread begins with a stop that is the tracer's alone; other signals are the child's
            const bool isForChild = eventOf(status) == 0 && WSTOPSIG(status) != SIGSTOP;
            resume(thread, PTRACE_CONT, isForChild ? WSTOPSIG(status) : 0);
        }
    }

    void handleWritingCall(pid_t thread) {
        const auto step = stepBelow(folder_, pendingCall(thread));
        if (step) {
            steps_.push_back(*step);
        }
        if (!step || !point_ || point_->step + 1 != steps_.size()) {
            resume(thread, PTRACE_CONT);
        } else if (point_->moment == KillPoint::Moment::Before) {
            kill(child_, SIGKILL); // a call that is killed here is skipped
        } else {
            resume(thread, PTRACE_SYSCALL);
        }
    }

    static PendingCall pendingCall(pid_t thread) {
        __ptrace_syscall_info info{};
        const auto size = ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), thread, sizeof info, &info);
        require(size > 0, "look at a system call (PTRACE_GET_SYSCALL_INFO)");
        PendingCall call{thread, info.seccomp.nr, {}};
        std::copy(std::begin(info.seccomp.args), std::end(info.seccomp.args), call.arguments.begin());
        return call;
    }

    /// Fails only for a thread that is gone, whose end is reported next.
    static void resume(pid_t thread, __ptrace_request how, long signal = 0) { ptrace(how, thread, nullptr, signal); }

    pid_t child_;
    std::string folder_;
    std::optional<KillPoint> point_;
    std::vector<std::string> steps_;
};

} // namespace

TracedRun runTraced(const std::string& folder, const std::function<void()>& body,
                    const std::optional<KillPoint>& point) {
    const pid_t child = harness::startChild([&] {
        becomeTraced();
        body();
    });
    return Tracer(child, folder, point).follow();
}

} // namespace kill_points
