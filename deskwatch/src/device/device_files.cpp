#include "device/device_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "c_owners.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

constexpr char settingsService[] = "ca.desrt.dconf";

using KeyFileOwner = c::Owner<GKeyFile, g_key_file_unref>;

void write(const fs::path& file, const std::string& text) {
    GError* error = nullptr;
    if (g_file_set_contents(file.c_str(), text.data(), static_cast<gssize>(text.size()), &error) == FALSE) {
        throw std::runtime_error("cannot write " + file.string() + ": " + c::takeMessage(error));
    }
}

std::string escapedForXml(const std::string& text) {
    const c::MemoryOwner<char> escaped(g_markup_escape_text(text.data(), static_cast<gssize>(text.size())));
    return escaped.get();
}

/// A bus for one user, on which everyone may own, send and receive everything, as applications of a watch under test
/// do. No limit is set on the time for a reply: a launch request is answered when the user has acted.
void writeBusConfiguration(const DeviceLayout& layout) {
    write(layout.busConfiguration(),
          R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
    "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>)" + escapedForXml(layout.busAddress()) +
              R"(</listen>
  <auth>EXTERNAL</auth>
  <servicedir>)" +
              escapedForXml(layout.services().string()) + R"(</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="service_start_timeout">60000</limit>
  <limit name="max_completed_connections">10000</limit>
  <limit name="max_connections_per_user">10000</limit>
  <limit name="max_pending_service_starts">10000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
)");
}

/// The one user of a watch is "owner"; here it is whoever boots the watch. Root cannot administer a device, so that it
/// boots one of the owner whose number devices have.
void writeUsers(const DeviceLayout& layout) {
    const std::string ids = std::to_string(numberOfOwner()) + ":" + std::to_string(getgid());
    write(layout.passwd(), "owner:x:" + ids + ":owner:/:/bin/sh\n");
    write(layout.group(), "owner:x:" + std::to_string(getgid()) + ":\n");
}

/// One word of an Exec line: quoted as for a shell, and its backslashes doubled because the bus takes the line out of a
/// file in which they begin an escape.
std::string execWord(const std::string& text) {
    const c::MemoryOwner<char> quoted(g_shell_quote(text.c_str()));
    std::string word;
    for (const char* character = quoted.get(); *character != '\0'; ++character) {
        word += *character == '\\' ? "\\\\" : std::string(1, *character);
    }
    return word;
}

void writeActivation(const DeviceLayout& layout, const std::string& id, const std::string& exec) {
    write(layout.services() / (id + ".service"), "[D-BUS Service]\nName=" + id + "\nExec=" + exec + "\n");
}

/// Why a program cannot be run, with what would help; empty when it can.
std::string whyNotRun(const std::string& program) {
    std::error_code error;
    if (program.empty()) {
        return "none given";
    }
    if (fs::is_directory(program, error)) {
        return program + " is a folder";
    }
    if (access(program.c_str(), X_OK) == 0) {
        return "";
    }
    error = {errno, std::generic_category()};
    const bool isThere = access(program.c_str(), F_OK) == 0;
    return program + ": " + error.message() +
           (isThere && error == std::errc::permission_denied ? "; make it executable with: chmod +x " + program : "");
}

void requireProgram(const Application& application) {
    const auto reason = whyNotRun(application.command.empty() ? "" : application.command.front());
    if (!reason.empty()) {
        throw std::runtime_error("cannot run the program of " + application.id + ": " + reason);
    }
}

std::string execLine(const DeviceLayout& layout, const Application& application, const std::string& env) {
    requireProgram(application);
    std::string line = execWord(env);
    for (const auto& assignment : assignments(layout.applicationEnvironment(application.id))) {
        line += " " + execWord(assignment);
    }
    for (const auto& argument : application.command) {
        line += " " + execWord(argument);
    }
    return line;
}

void writeApplications(const DeviceLayout& layout, const std::vector<Application>& applications) {
    const c::MemoryOwner<char> env(g_find_program_in_path("env"));
    if (env == nullptr) {
        throw std::runtime_error("no env on PATH (apt install coreutils)");
    }
    for (const auto& application : applications) {
        writeActivation(layout, application.id, execLine(layout, application, env.get()));
        fs::create_directories(layout.applicationData(application.id));
    }
}

/// The settings service is the machine's own program, started for this device alone.
void writeSettingsService(const DeviceLayout& layout) {
    const std::string name = std::string("dbus-1/services/") + settingsService + ".service";
    const KeyFileOwner file(g_key_file_new());
    if (g_key_file_load_from_data_dirs(file.get(), name.c_str(), nullptr, G_KEY_FILE_NONE, nullptr) == FALSE) {
        throw std::runtime_error("no settings service on this machine (apt install dconf-service)");
    }
    const c::MemoryOwner<char> exec(g_key_file_get_value(file.get(), "D-BUS Service", "Exec", nullptr));
    if (exec == nullptr) {
        throw std::runtime_error("the machine's " + name + " does not name a program");
    }
    writeActivation(layout, settingsService, exec.get());
    write(layout.settingsProfile(), "user-db:user\n");
}

/// The program and its arguments out of an Exec line that execLine made.
std::vector<std::string> commandOf(const DeviceLayout& layout, const std::string& id, const std::string& exec) {
    int count = 0;
    char** words = nullptr;
    GError* error = nullptr;
    if (g_shell_parse_argv(exec.c_str(), &count, &words, &error) == FALSE) {
        throw std::runtime_error("cannot read how " + id + " is started: " + c::takeMessage(error));
    }
    const std::unique_ptr<char*, decltype(&g_strfreev)> owner(words, &g_strfreev);
    const auto first = std::min<int>(count, 1 + static_cast<int>(layout.applicationEnvironment(id).size()));
    return {words + first, words + count};
}

} // namespace

uid_t numberOfOwner() {
    constexpr uid_t ownerOfDevices = 5001;
    return getuid() != 0 ? getuid() : ownerOfDevices;
}

std::vector<Application> readApplications(const DeviceLayout& layout) {
    std::vector<Application> applications;
    for (const auto& entry : fs::directory_iterator(layout.services())) {
        const std::string id = entry.path().stem().string();
        if (id == settingsService) {
            continue;
        }
        const KeyFileOwner file(g_key_file_new());
        g_key_file_load_from_file(file.get(), entry.path().c_str(), G_KEY_FILE_NONE, nullptr);
        const c::MemoryOwner<char> exec(g_key_file_get_string(file.get(), "D-BUS Service", "Exec", nullptr));
        applications.push_back({id, commandOf(layout, id, exec != nullptr ? exec.get() : "")});
    }
    return applications;
}

void writeDeviceFiles(const DeviceLayout& layout, const std::vector<Application>& applications) {
    fs::remove_all(layout.services());
    fs::create_directories(layout.services());
    writeBusConfiguration(layout);
    writeUsers(layout);
    writeSettingsService(layout);
    writeApplications(layout, applications);
}

} // namespace deskwatch
