#include "private_device.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host_bus.h"

namespace fs = std::filesystem;

namespace {

constexpr char storeService[] = "/usr/share/dbus-1/services/ca.desrt.dconf.service";

fs::path temporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "device-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder " + pattern);
    }
    return pattern;
}

void writeFile(const fs::path& path, const std::string& content) {
    std::ofstream file(path);
    file << content;
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void setVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);
}

std::string busConfiguration(const fs::path& folder) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
    "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=)" +
           (folder / "bus").string() + R"(</listen>
  <auth>EXTERNAL</auth>
  <servicedir>)" +
           (folder / "services").string() + R"(</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

} // namespace

PrivateDevice::PrivateDevice(const std::string& applicationId) : folder_(temporaryFolder()) {
    for (const char* name : {"services", "config", "run", "storage/internal", "storage/external"}) {
        fs::create_directories(folder_ / name);
    }
    fs::copy_file(storeService, folder_ / "services" / "ca.desrt.dconf.service");
    writeFile(folder_ / "bus.conf", busConfiguration(folder_));
    const std::string address = "unix:path=" + (folder_ / "bus").string();
    setVariable(host_bus::appIdVariable, applicationId);
    setVariable(host_bus::deviceVariable, folder_.string());
    setVariable("DBUS_SESSION_BUS_ADDRESS", address);
    setVariable("DBUS_SYSTEM_BUS_ADDRESS", address);
    setVariable("XDG_CONFIG_HOME", (folder_ / "config").string());
    setVariable("XDG_RUNTIME_DIR", (folder_ / "run").string());
    // a call of GLib with a wrong argument ends the process, here as in those that it starts
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL));
    setVariable("G_DEBUG", "fatal-criticals");
}

PrivateDevice::~PrivateDevice() {
    shutDown();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void PrivateDevice::boot() {
    fs::remove(folder_ / "bus");
    const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE));
    g_subprocess_launcher_set_stderr_file_path(launcher.get(), (folder_ / "log").c_str());
    const std::string configuration = "--config-file=" + (folder_ / "bus.conf").string();
    const std::array<const char*, 6> command{"dbus-daemon", configuration.c_str(), "--nofork",
                                             "--nopidfile", "--print-address=1",   nullptr};
    g_autoptr(GError) error = nullptr;
    daemon_.reset(g_subprocess_launcher_spawnv(launcher.get(), command.data(), &error));
    if (daemon_ == nullptr) {
        throw std::runtime_error(std::string("cannot start dbus-daemon: ") + error->message);
    }
    // It prints its address when it listens.
    std::array<char, 1> first{};
    if (g_input_stream_read(g_subprocess_get_stdout_pipe(daemon_.get()), first.data(), first.size(), nullptr, &error) !=
        1) {
        throw std::runtime_error("dbus-daemon ended: " + log());
    }
}

void PrivateDevice::shutDown() {
    if (daemon_ != nullptr) {
        g_subprocess_force_exit(daemon_.get());
        g_subprocess_wait(daemon_.get(), nullptr, nullptr);
        daemon_.reset();
    }
}

void PrivateDevice::install(const std::string& applicationId, const std::string& command) {
    writeFile(folder_ / "services" / (applicationId + ".service"),
              "[D-BUS Service]\nName=" + applicationId + "\nExec=/usr/bin/env TESK_APP_ID=" + applicationId + " " +
                  command + "\n");
}

std::string PrivateDevice::log() const {
    std::ostringstream text;
    text << std::ifstream(folder_ / "log").rdbuf();
    return text.str();
}
