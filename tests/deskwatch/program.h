#ifndef DESKWATCH_PROGRAM_H
#define DESKWATCH_PROGRAM_H

#include <string>
#include <vector>

/// What became of a run of a program.
struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

/// Runs the deskwatch program with these arguments, in this process's environment, until it ends. With a file, its
/// output goes there and is not in the outcome.
Outcome deskwatchProgram(const std::vector<std::string>& arguments, const std::string& outputFile = "");

/// The same for a program whose reader is gone before it writes.
Outcome deskwatchWithoutReader(const std::vector<std::string>& arguments);

#endif
