// An application of the host platform for tests: it says what happens to it, one line each on stderr, and does what it
// is told by launch requests and by messages on its port "control".

#include <app_control.h>
#include <dpm/administration.h>
#include <dpm/password.h>
#include <dpm/security.h>
#include <gio/gio.h>
#include <message_port.h>
#include <service_app.h>
#include <unistd.h>
#include <vconf.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform_owners.h"

namespace {

using Arguments = std::vector<std::string>;

struct Application {
    bool refuses = false;
    bool ownsSystemName = false;
    bool exitsInCreate = false;
    guint timer = 0;
    app_control_h kept = nullptr;
    std::string waitsFor; // a file, before it ends
};

void say(const std::string& line) {
    std::cerr << line << "\n" << std::flush;
}

std::string extraData(app_control_h control, const char* key) {
    char* value = nullptr;
    return app_control_get_extra_data(control, key, &value) == APP_CONTROL_ERROR_NONE ? taken(value) : std::string();
}

std::string callerOf(app_control_h control) {
    char* id = nullptr;
    const int result = app_control_get_caller(control, &id);
    if (result == APP_CONTROL_ERROR_KEY_NOT_FOUND) {
        return "nobody";
    }
    return result == APP_CONTROL_ERROR_NONE ? taken(id) : "an error";
}

int answer(app_control_h request) {
    const AppControlOwner reply = newAppControl();
    const std::string text = extraData(request, "text");
    app_control_add_extra_data(reply.get(), "answer", text.empty() ? "yes" : text.c_str());
    return app_control_reply_to_launch_request(reply.get(), request, APP_CONTROL_RESULT_SUCCEEDED);
}

void onAnswered(app_control_h /*request*/, app_control_h /*reply*/, app_control_result_e result, void* /*data*/) {
    say("answered " + std::to_string(result));
}

// Keeps the main loop from running until a file is there, with a limit.
void waitForFile(const std::string& path) {
    constexpr int limit = 10000;
    for (int i = 0; i < limit && access(path.c_str(), F_OK) != 0; ++i) {
        g_usleep(1000);
    }
}

// Launches another application that will keep the request.
void launchAndWait(const std::string& target) {
    const AppControlOwner request = newAppControl();
    app_control_set_app_id(request.get(), target.c_str());
    app_control_add_extra_data(request.get(), "do", "keep");
    app_control_send_launch_request(request.get(), onAnswered, nullptr);
}

void onKeyChanged(keynode_t* node, void* /*data*/) {
    say(std::string("key ") + vconf_keynode_get_name(node) + " is " + std::to_string(vconf_keynode_get_int(node)));
}

void onEvent(app_event_info_h /*info*/, void* name) {
    say(std::string("event ") + static_cast<const char*>(name));
}

std::string textOf(bundle* message, const char* key) {
    char* text = nullptr;
    bundle_get_str(message, key, &text);
    return text != nullptr ? text : "";
}

gboolean onTimer(gpointer /*data*/) {
    say("timer");
    return G_SOURCE_CONTINUE;
}

void onMessage(int port, const char* sender, const char* /*remotePort*/, bool /*trusted*/, bundle* message,
               void* data) {
    auto* application = static_cast<Application*>(data);
    const std::string todo = textOf(message, "do");
    if (todo == "answer") {
        app_control_h request = std::exchange(application->kept, nullptr);
        answer(request);
        say("late answer given, caller: " + callerOf(request));
    } else if (todo == "watch") {
        vconf_notify_key_changed(textOf(message, "key").c_str(), onKeyChanged, nullptr);
        say("watching");
    } else if (todo == "start ten seconds") {
        application->timer = g_timeout_add_seconds(10, onTimer, nullptr);
        say(todo + " done");
    } else if (todo == "stop") {
        g_source_remove(application->timer);
        say(todo + " done");
    } else if (todo == "close") {
        message_port_unregister_local_port(port);
        say(todo + " done");
    } else if (todo == "throw") {
        throw std::runtime_error("the application gave up");
    } else {
        say(std::string("message from ") + sender + ": " +
            (message != nullptr ? textOf(message, "text") : "no message"));
    }
}

void ownSystemName() {
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    g_bus_own_name_on_connection(bus, "com.example.system", G_BUS_NAME_OWNER_FLAGS_NONE, nullptr, nullptr, nullptr,
                                 nullptr);
}

bool onCreate(void* data) {
    auto* application = static_cast<Application*>(data);
    say("create");
    message_port_register_local_port("control", onMessage, data);
    if (application->ownsSystemName) {
        ownSystemName();
    }
    if (application->exitsInCreate) {
        service_app_exit();
    }
    return !application->refuses;
}

void onTerminate(void* data) {
    say("terminate");
    const std::string& file = static_cast<Application*>(data)->waitsFor;
    if (!file.empty()) {
        waitForFile(file);
    }
}

void onLaunch(app_control_h request, void* data) {
    auto* application = static_cast<Application*>(data);
    const std::string todo = extraData(request, "do");
    if (todo == "answer") {
        say("first answer " + std::to_string(answer(request)));
        say("second answer " + std::to_string(answer(request)));
    } else if (todo == "keep") {
        application->kept = request;
    } else if (todo == "drop") {
        app_control_destroy(request);
        say("dropped");
        return;
    } else if (todo == "crash") {
        _exit(EXIT_FAILURE);
    } else if (todo == "exit") {
        service_app_exit();
    } else if (todo == "exit-late") {
        application->waitsFor = extraData(request, "file");
        service_app_exit();
    } else if (todo == "exit-when") {
        service_app_exit();
        say("exit asked");
        waitForFile(extraData(request, "file"));
    } else if (todo == "launch") {
        launchAndWait(extraData(request, "target"));
    }
    char* target = nullptr;
    char* self = nullptr;
    if (app_control_get_app_id(request, &target) != 0 || app_get_id(&self) != 0 || taken(target) != taken(self)) {
        say("not for me");
    }
    say("launch by " + callerOf(request) + ": " + extraData(request, "text"));
}

int serve(Application application) {
    app_event_handler_h lowMemory = nullptr;
    char name[] = "low memory";
    service_app_add_event_handler(&lowMemory, APP_EVENT_LOW_MEMORY, onEvent, name);
    service_app_lifecycle_callback_s callbacks{onCreate, onTerminate, onLaunch};
    char program[] = "test-application";
    char* arguments[] = {program, nullptr};
    const int result = service_app_main(1, arguments, &callbacks, &application);
    say("main returned " + std::to_string(result));
    return result == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int serveWith(bool Application::*behaviour) {
    Application application;
    application.*behaviour = true;
    return serve(application);
}

// Sends each text to another application's port, and ends at once.
int sendMessages(const Arguments& arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const BundleOwner message = bundleOf({{"text", arguments[i]}});
        if (message_port_send_message(arguments[0].c_str(), "control", message.get()) != 0) {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}

// Launches another application, and ends at once.
int launch(const Arguments& arguments) {
    const AppControlOwner request = newAppControl();
    app_control_set_app_id(request.get(), arguments.at(0).c_str());
    app_control_add_extra_data(request.get(), "text", arguments.at(1).c_str());
    return app_control_send_launch_request(request.get(), nullptr, nullptr) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Asks the bus daemon twice, without a main loop.
int askAgain(const Arguments& arguments) {
    bool open = false;
    message_port_check_remote_port("com.example.other", "control", &open);
    say("asked");
    waitForFile(arguments.at(0));
    message_port_check_remote_port("com.example.other", "control", &open);
    return EXIT_SUCCESS;
}

int setKey(const Arguments& arguments) {
    return vconf_set_int(arguments.at(0).c_str(), std::stoi(arguments.at(1))) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int printKey(const Arguments& arguments) {
    int value = 0;
    const int result = vconf_get_int(arguments.at(0).c_str(), &value);
    std::cout << value;
    return result == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int administer(const Arguments& arguments) {
    const ManagerOwner manager(dpm_manager_create());
    char* id = nullptr;
    app_get_id(&id);
    constexpr uid_t owner = 5001;
    dpm_admin_register_client(manager.get(), taken(id).c_str(), owner);
    const bool isSet = dpm_password_set_quality(manager.get(), std::stoi(arguments.at(0))) == 0;
    return isSet ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Prints the quality, and whether a setter is allowed.
int printQuality(const Arguments& /*arguments*/) {
    const ManagerOwner manager(dpm_manager_create());
    int quality = -1;
    dpm_password_get_quality(manager.get(), &quality);
    std::cout << quality << " " << dpm_password_set_quality(manager.get(), quality);
    return EXIT_SUCCESS;
}

using Command = std::function<int(const Arguments&)>;

const std::map<std::string, Command>& commands() {
    static const std::map<std::string, Command> all{
        {"serve", [](const Arguments&) { return serve({}); }},
        {"refuse", [](const Arguments&) { return serveWith(&Application::refuses); }},
        {"serve-on-both-buses", [](const Arguments&) { return serveWith(&Application::ownsSystemName); }},
        {"exit-in-create", [](const Arguments&) { return serveWith(&Application::exitsInCreate); }},
        {"send", sendMessages},
        {"launch", launch},
        {"ask-again", askAgain},
        {"set-key", setKey},
        {"print-key", printKey},
        {"administer", administer},
        {"print-quality", printQuality},
    };
    return all;
}

} // namespace

int main(int argc, char** argv) {
    const Arguments arguments(argv + 1, argv + argc);
    return commands().at(arguments.at(0))(Arguments(arguments.begin() + 1, arguments.end()));
}
