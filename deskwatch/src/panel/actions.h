#ifndef DESKWATCH_ACTIONS_H
#define DESKWATCH_ACTIONS_H

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <vector>

namespace deskwatch {

/// A command of this program and what it reads from standard input.
struct CommandLine {
    std::vector<std::string> arguments;
    std::string input;
    /// The password that the command wants, instead of other input. It is shown nowhere: a terminal would ask for it.
    std::string password = {};
};

/// What a page asks for does not make a command. The text says what is wrong and what would be right.
class BadAction : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The commands that do what a page asks for, `{"action": NAME, ...}`, in order; the first that fails ends them. What a
/// page does is done by the commands that a terminal would be given, so that both always agree. Throws BadAction.
std::vector<CommandLine> commandsOf(const nlohmann::json& request);

/// The same as one line for a shell, about the watch in that folder.
std::string shellText(const std::string& folder, const std::vector<CommandLine>& commands);

} // namespace deskwatch

#endif
