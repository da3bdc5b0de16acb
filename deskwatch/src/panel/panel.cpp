#include "panel/panel.h"

#include <glib-unix.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "actors/mail_application.h"
#include "panel/actions.h"
#include "panel/event_ring.h"
#include "panel/page_files.h"
#include "panel/panel_server.h"
#include "panel/story_recorder.h"
#include "panel/watch_feed.h"
#include "recording/timeline.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

constexpr unsigned badAction = 400;
constexpr unsigned tooBusy = 503;
constexpr int mostActions = 8;
constexpr char jsonType[] = "application/json";

/// A folder that only this user can read, as long as this object lives.
class PrivateFolder {
public:
    PrivateFolder() {
        GError* error = nullptr;
        const c::MemoryOwner<char> path(g_dir_make_tmp("deskwatch-panel-XXXXXX", &error));
        if (path == nullptr) {
            throw std::runtime_error("cannot make a folder for the panel: " + c::takeMessage(error));
        }
        path_ = path.get();
    }
    ~PrivateFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

/// The commands of one action, run one after the other.
struct RunningAction {
    std::string name;
    std::vector<CommandLine> commands;
    std::size_t next = 0;
    std::string shell;
    CommandOutcome outcome{0, "", ""};
    PanelServer::Answer answer;
};

class Panel {
public:
    Panel(const Device& device, unsigned port)
        : device_(device), recorder_(folder(), privateFolder_.path() / "story.jsonl", ring_, [this] { tell(); }),
          server_(port, ring_,
                  {[this](const std::string& body, const PanelServer::Answer& answer) { act(body, answer); },
                   [this](const std::string& name) { return document(name); }}),
          feed_(device, ring_, [this] { tell(); }) {
        isServing_ = true;
        ring_.setState("panel", jsonText({{"largestMessage", largestArgument("req_update_policy")},
                                          {"samples", pageFiles("samples/")}}));
    }

    void run(const PanelOptions& options) {
        const auto file = privateFolder_.path() / "panel.html";
        writeRedirect(file);
        const c::MainLoopOwner loop(g_main_loop_new(nullptr, FALSE));
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            g_unix_signal_add(
                signal,
                [](gpointer data) -> gboolean {
                    g_main_loop_quit(static_cast<GMainLoop*>(data));
                    return G_SOURCE_CONTINUE;
                },
                loop.get());
        }
        options.onReady(server_.address(), file.string());
        g_main_loop_run(loop.get());
        server_.close();
    }

    bool hasBooted() const { return hasBooted_; }

private:
    std::string folder() const { return device_.layout().folder().string(); }

    void tell() {
        if (isServing_) {
            server_.streams().tell();
        }
    }

    void writeRedirect(const fs::path& file) const {
        std::ofstream stream(file);
        fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
        stream << "<!DOCTYPE html><meta charset=\"utf-8\"><title>deskwatch</title><meta http-equiv=\"refresh\" "
                  "content=\"0; url="
               << server_.address() << "\">\n";
    }

    std::optional<PanelReply> document(const std::string& name) const {
        if (name != "story.jsonl") {
            return std::nullopt;
        }
        return PanelReply{200, "application/octet-stream", recorder_.text()};
    }

    void act(const std::string& body, const PanelServer::Answer& answer) {
        try {
            const auto request = nlohmann::json::parse(body);
            if (!actOnRecording(request, answer)) {
                begin(request, answer);
            }
        } catch (const nlohmann::json::exception& error) {
            answer(
                {badAction, "text/plain; charset=utf-8", std::string("the body is not valid JSON: ") + error.what()});
        } catch (const BadAction& error) {
            answer({badAction, "text/plain; charset=utf-8", error.what()});
        }
    }

    bool actOnRecording(const nlohmann::json& request, const PanelServer::Answer& answer) {
        const auto name = request.is_object() ? request.value("action", nlohmann::json()) : nlohmann::json();
        if (name != "record" && name != "record-stop") {
            return false;
        }
        name == "record" ? recorder_.start() : recorder_.stop();
        answer({200, jsonType,
                jsonText({{"status", 0},
                          {"output", ""},
                          {"errors", ""},
                          {"command", shellText(folder(), {{{"record", "story.jsonl"}, ""}})}})});
        return true;
    }

    void begin(const nlohmann::json& request, const PanelServer::Answer& answer) {
        const auto action = std::make_shared<RunningAction>();
        action->commands = commandsOf(request);
        action->name = request.at("action").get<std::string>();
        action->shell = shellText(folder(), action->commands);
        action->answer = answer;
        if (running_ >= mostActions) {
            answer({tooBusy, "text/plain; charset=utf-8", "too many actions are going on; wait for one to end"});
            return;
        }
        ++running_;
        continueWith(action);
    }

    void continueWith(const std::shared_ptr<RunningAction>& action) {
        if (action->outcome.status != 0 || action->next == action->commands.size()) {
            finish(*action);
            return;
        }
        const auto& command = action->commands[action->next++];
        std::vector<std::string> words{"--device", folder()};
        words.insert(words.end(), command.arguments.begin(), command.arguments.end());
        try {
            runCommand(words, command.input, [this, action](const CommandOutcome& outcome) {
                action->outcome = outcome;
                continueWith(action);
            });
        } catch (const std::runtime_error& error) {
            action->outcome = {-1, "", error.what()};
            finish(*action);
        }
    }

    void finish(const RunningAction& action) {
        --running_;
        const bool isDone = action.outcome.status == 0;
        hasBooted_ = isDone && action.name == "boot" ? true : isDone && action.name == "off" ? false : hasBooted_;
        if (action.name != "whatif" && action.name != "import") { // they change nothing
            tellAction(action);
        }
        const nlohmann::ordered_json result{{"status", action.outcome.status},
                                            {"output", action.outcome.output},
                                            {"errors", action.outcome.errors},
                                            {"command", action.shell}};
        action.answer({200, jsonType, jsonText(result)});
    }

    /// All pages see what one of them did.
    void tellAction(const RunningAction& action) {
        auto commands = action.commands;
        for (auto& command : commands) {
            command.input.clear(); // the time line has the message itself
        }
        TimelineEntry entry;
        entry.time = std::chrono::system_clock::now();
        entry.kind = "action";
        entry.text = shellText(folder(), commands);
        entry.detail = jsonText(
            {{"status", action.outcome.status}, {"output", action.outcome.output}, {"errors", action.outcome.errors}});
        auto line = timelineJson(entry);
        line.pop_back();
        ring_.add(line);
        tell();
    }

    const Device& device_;
    PrivateFolder privateFolder_;
    EventRing ring_{randomText().substr(0, 8)};
    bool isServing_ = false;
    StoryRecorder recorder_;
    PanelServer server_;
    WatchFeed feed_;
    int running_ = 0;
    bool hasBooted_ = false;
};

} // namespace

bool runPanel(const Device& device, const PanelOptions& options) {
    Panel panel(device, options.port);
    panel.run(options);
    return panel.hasBooted();
}

} // namespace deskwatch
