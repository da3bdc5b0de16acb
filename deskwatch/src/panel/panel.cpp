#include "panel/panel.h"

#include <fstream>

#include "actors/mail_application.h"
#include "panel/action_runner.h"
#include "panel/actions.h"
#include "panel/event_ring.h"
#include "panel/page_files.h"
#include "panel/panel_server.h"
#include "panel/private_folder.h"
#include "panel/story_recorder.h"
#include "panel/watch_feed.h"
#include "session/platform_faults.h"
#include "text/country.h"
#include "text/json_input.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

constexpr unsigned badAction = 400;
constexpr char jsonType[] = "application/json";

class Panel {
public:
    Panel(const Device& device, unsigned port)
        : device_(device), recorder_(folder(), privateFolder_.path() / "story.jsonl", ring_, [this] { tell(); }),
          server_(port, ring_,
                  {[this](const std::string& body, const PanelServer::Answer& answer) { act(body, answer); },
                   [this](const std::string& name) { return document(name); }}),
          feed_(device, ring_, [this] { tell(); }), actions_(folder(), ring_, [this] { tell(); }) {
        isServing_ = true;
        ring_.setState("panel", jsonText({{"largestMessage", largestArgument("req_update_policy")},
                                          {"samples", pageFiles("samples/")},
                                          {"countries", countryCodes()},
                                          {"functions", platformFunctions()}}));
    }

    void run(const PanelOptions& options, EndRequest& endRequest) {
        const auto file = privateFolder_.path() / "panel.html";
        writeRedirect(file);
        const c::MainLoopOwner loop(g_main_loop_new(nullptr, FALSE));
        endRequest.whenNoted([&loop] { g_main_loop_quit(loop.get()); });
        options.onReady(server_.address(), file.string());
        g_main_loop_run(loop.get());
        server_.close();
    }

    std::optional<pid_t> lastBoot() const { return actions_.lastBoot(); }

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
                actions_.run(request, answer);
            }
        } catch (const nlohmann::json::exception& error) {
            answer({badAction, "text/plain; charset=utf-8", "the body is not valid JSON: " + jsonFault(error)});
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

    const Device& device_;
    PrivateFolder privateFolder_;
    EventRing ring_{randomText().substr(0, 8)};
    bool isServing_ = false;
    StoryRecorder recorder_;
    PanelServer server_;
    WatchFeed feed_;
    ActionRunner actions_;
};

} // namespace

std::optional<pid_t> runPanel(const Device& device, const PanelOptions& options, EndRequest& endRequest) {
    Panel panel(device, options.port);
    panel.run(options, endRequest);
    return panel.lastBoot();
}

} // namespace deskwatch
