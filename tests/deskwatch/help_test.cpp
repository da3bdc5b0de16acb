#include <gtest/gtest.h>

#include <functional>

#include "commands/commands.h"

namespace deskwatch {
namespace {

/// The whole program, and its commands from the outermost inwards.
class Help : public testing::Test {
protected:
    Help() { addCommands(program_, common_); }

    /// Visits every command that users see, with its name as one types it.
    void visit(const std::function<void(const std::string&, const CLI::App&)>& visitor) const {
        visit("deskwatch", program_, visitor);
    }

private:
    static void visit(const std::string& name, const CLI::App& command,
                      const std::function<void(const std::string&, const CLI::App&)>& visitor) {
        visitor(name, command);
        for (const auto* inner : command.get_subcommands([](const CLI::App*) { return true; })) {
            if (!inner->get_group().empty()) {
                visit(name + " " + inner->get_name(), *inner, visitor);
            }
        }
    }

    CLI::App program_{"", "deskwatch"};
    CommonOptions common_;
};

TEST_F(Help, EveryCommandHasAnExampleOfItself) {
    int count = 0;
    visit([&](const std::string& name, const CLI::App& command) {
        const std::string footer = command.get_footer();
        const auto example = footer.find("Example:\n  ");
        ASSERT_NE(example, std::string::npos) << name;
        const std::string own = name == "deskwatch off" ? "deskwatch --device /tmp/watch off" : name;
        EXPECT_NE(footer.find("  " + own, example), std::string::npos) << name << " is not in its own example";
        ++count;
    });
    EXPECT_GT(count, 15);
}

TEST_F(Help, EveryCommandAndEveryOptionIsDescribed) {
    visit([&](const std::string& name, const CLI::App& command) {
        EXPECT_TRUE(name == "deskwatch" || !command.get_description().empty()) << name;
        for (const auto* option : command.get_options()) {
            EXPECT_FALSE(option->get_description().empty()) << name << " " << option->get_name();
        }
    });
}

} // namespace
} // namespace deskwatch
