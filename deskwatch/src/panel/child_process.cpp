#include "panel/child_process.h"

#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace deskwatch {
namespace {

c::ObjectOwner<GSubprocess> startSelf(const std::vector<std::string>& arguments, GSubprocessFlags flags) {
    const auto self = std::filesystem::read_symlink("/proc/self/exe").string();
    std::vector<const char*> words{self.c_str()};
    for (const auto& argument : arguments) {
        words.push_back(argument.c_str());
    }
    words.push_back(nullptr);
    GError* error = nullptr;
    c::ObjectOwner<GSubprocess> process(g_subprocess_newv(words.data(), flags, &error));
    if (process == nullptr) {
        throw std::runtime_error("cannot start deskwatch: " + c::takeMessage(error));
    }
    return process;
}

int exitStatus(GSubprocess* process) {
    return g_subprocess_get_if_exited(process) != FALSE ? g_subprocess_get_exit_status(process) : -1;
}

using WhenDone = std::function<void(const CommandOutcome& outcome)>;

void onCommunicated(GObject* object, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<WhenDone> whenDone(static_cast<WhenDone*>(data));
    auto* process = G_SUBPROCESS(object);
    GBytes* output = nullptr;
    GBytes* errors = nullptr;
    GError* error = nullptr;
    if (g_subprocess_communicate_finish(process, result, &output, &errors, &error) == FALSE) {
        (*whenDone)({-1, "", "cannot talk to deskwatch: " + c::takeMessage(error)});
        return;
    }
    (*whenDone)({exitStatus(process), c::takeText(output), c::takeText(errors)});
}

} // namespace

void runCommand(const std::vector<std::string>& arguments, const std::string& input, WhenDone whenDone) {
    const auto flags = static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                                     G_SUBPROCESS_FLAGS_STDERR_PIPE);
    const auto process = startSelf(arguments, flags);
    const c::BytesOwner bytes(g_bytes_new(input.data(), input.size()));
    g_subprocess_communicate_async(process.get(), bytes.get(), nullptr, onCommunicated,
                                   new WhenDone(std::move(whenDone)));
}

/// Lives as long as a callback of the process may come.
struct LineProcess::State : std::enable_shared_from_this<State> {
    OnLine onLine;
    OnEnd onEnd;
    c::ObjectOwner<GSubprocess> process;
    c::ObjectOwner<GDataInputStream> output;
    bool isWanted = true;

    using Holder = std::shared_ptr<State>;

    void readNext() {
        g_data_input_stream_read_line_async(output.get(), G_PRIORITY_DEFAULT, nullptr, onRead,
                                            new Holder(shared_from_this()));
    }

    static void onRead(GObject* object, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<Holder> holder(static_cast<Holder*>(data));
        auto& state = **holder;
        gsize length = 0;
        const c::MemoryOwner<char> line(
            g_data_input_stream_read_line_finish(G_DATA_INPUT_STREAM(object), result, &length, nullptr));
        if (line == nullptr) {
            g_subprocess_wait_async(state.process.get(), nullptr, onEnded, new Holder(*holder));
            return;
        }
        if (state.isWanted) {
            state.onLine(std::string(line.get(), length));
        }
        state.readNext();
    }

    static void onEnded(GObject* object, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<Holder> holder(static_cast<Holder*>(data));
        g_subprocess_wait_finish(G_SUBPROCESS(object), result, nullptr);
        auto& state = **holder;
        if (state.isWanted) {
            state.isWanted = false;
            const auto end = state.onEnd; // it may destroy the owner of this
            end(exitStatus(state.process.get()));
        }
    }
};

LineProcess::LineProcess(const std::vector<std::string>& arguments, OnLine onLine, OnEnd onEnd)
    : state_(std::make_shared<State>()) {
    state_->onLine = std::move(onLine);
    state_->onEnd = std::move(onEnd);
    state_->process = startSelf(
        arguments, static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_MERGE));
    state_->output.reset(g_data_input_stream_new(g_subprocess_get_stdout_pipe(state_->process.get())));
    state_->readNext();
}

LineProcess::~LineProcess() {
    state_->isWanted = false;
    g_subprocess_send_signal(state_->process.get(), SIGTERM);
}

void LineProcess::interrupt() const {
    g_subprocess_send_signal(state_->process.get(), SIGINT);
}

} // namespace deskwatch
