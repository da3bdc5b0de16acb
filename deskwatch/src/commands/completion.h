#ifndef DESKWATCH_COMPLETION_H
#define DESKWATCH_COMPLETION_H

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace deskwatch {

/// A check with the names that the completion proposes for its option. The check may take more.
CLI::Validator proposing(const std::vector<std::string>& names, CLI::Validator check = CLI::Validator(""));

/// The completion for bash of a program's commands, options and their values. Where a value is not one of a few names,
/// bash proposes files.
std::string completionScript(CLI::App& program);

} // namespace deskwatch

#endif
