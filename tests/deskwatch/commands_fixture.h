#ifndef DESKWATCH_COMMANDS_FIXTURE_H
#define DESKWATCH_COMMANDS_FIXTURE_H

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "c_owners.h"
#include "device/bus_client.h"
#include "device/device.h"
#include "program.h"
#include "session/companion_bus.h"
#include "temporary_folder.h"

namespace deskwatch {

using Json = nlohmann::json;

inline constexpr std::chrono::seconds timeout{20};

/// The deskwatch program with a list of watches of its own, and a watch to boot.
class Commands : public testing::Test {
protected:
    Commands() {
        setenv("XDG_STATE_HOME", (folder_.path() / "state").c_str(), 1);
        unsetenv("DESKWATCH_DEVICE");
    }

    ~Commands() override {
        if (device_.isBooted()) {
            device_.off();
        }
    }

    void boot(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments{"boot", device_.layout().folder().string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        run(arguments);
    }

    /// Runs a command that has to succeed; warnings, and waits on a busy machine, aside; returns what it wrote.
    static std::string run(const std::vector<std::string>& arguments) {
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        std::istringstream errors(outcome.errors);
        for (std::string line; std::getline(errors, line);) {
            EXPECT_TRUE(line.rfind("warning: ", 0) == 0 || line.rfind("deskwatch: waiting for ", 0) == 0) << line;
        }
        return outcome.output;
    }

    static Json status() { return Json::parse(run({"status", "--json"})); }

    static std::string sample(const std::string& name) { return std::string(SAMPLES) + "/" + name; }

    std::filesystem::path write(const std::string& name, const std::string& text) const {
        auto file = folder_.path() / name;
        std::ofstream(file) << text;
        return file;
    }

    const std::filesystem::path& folder() const { return folder_.path(); }
    const Device& device() const { return device_; }

    /// Asks a stand-in for an application.
    std::string ask(const char* id, const char* method, GVariant* arguments = nullptr) const {
        const auto answer = BusClient(device_.busAddress())
                                .call({id, companion_bus::path, "tesk.desk.Companion", method}, arguments, timeout);
        const c::MemoryOwner<char> text(g_variant_print(answer.get(), FALSE));
        return text.get();
    }

    /// Returns when an application has handled what was sent to it before.
    void settle(const char* id) const {
        BusClient(device_.busAddress())
            .call({id, "/tesk/host/application", "tesk.host.Application", "Settle"}, nullptr, timeout);
    }

private:
    TemporaryFolder folder_;
    Device device_{folder_.path() / "watch"};
};

} // namespace deskwatch

#endif
