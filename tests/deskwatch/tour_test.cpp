#include <sstream>

#include "commands_fixture.h"

namespace deskwatch {
namespace {

/// A command of the tour and what the reader is shown of its output.
struct Step {
    std::vector<std::string> words;
    std::vector<std::string> lines;
};

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

/// The steps of the blocks in the README that begin with "```console".
std::vector<Step> readTour() {
    std::ifstream file(std::string(SOURCE_FOLDER) + "/README.md");
    std::vector<Step> steps;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("```", 0) == 0) {
            isInside = line == "```console";
        } else if (isInside && line.rfind("$ deskwatch ", 0) == 0) {
            steps.push_back({wordsOf(line.substr(12)), {}});
        } else if (isInside && !steps.empty()) {
            steps.back().lines.push_back(line);
        }
    }
    return steps;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

/// Whether lines are those that are shown, where "..." stands for any lines, none included.
bool matches(const std::vector<std::string>& shown, std::size_t s, const std::vector<std::string>& lines,
             std::size_t l) {
    if (s == shown.size()) {
        return l == lines.size();
    }
    if (shown[s] == "...") {
        return matches(shown, s + 1, lines, l) || (l < lines.size() && matches(shown, s, lines, l + 1));
    }
    return l < lines.size() && shown[s] == lines[l] && matches(shown, s + 1, lines, l + 1);
}

class Tour : public Commands {};

TEST_F(Tour, EveryCommandPrintsWhatTheReadmeShows) {
    const auto folder = device().layout().folder().string();
    std::filesystem::current_path(SOURCE_FOLDER); // the tour names the samples as one does there
    const auto steps = readTour();
    ASSERT_GE(steps.size(), 8U);
    for (auto step : steps) {
        std::string command;
        for (auto& word : step.words) {
            replaceAll(word, "/tmp/watch", folder);
            command += " " + word;
        }
        const auto outcome = deskwatchProgram(step.words);
        std::string output = outcome.output + outcome.errors;
        replaceAll(output, folder, "/tmp/watch");
        std::vector<std::string> lines;
        std::istringstream stream(output);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        EXPECT_TRUE(matches(step.lines, 0, lines, 0)) << "deskwatch" << command << " prints\n" << output;
    }
}

} // namespace
} // namespace deskwatch
