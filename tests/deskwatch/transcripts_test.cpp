#include <regex>
#include <sstream>

#include "commands_fixture.h"
#include "watch_clock.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

/// Stands for any lines, none included, so that a document shows what matters.
constexpr char anyLines[] = "...";

/// What a user types, after a "$ " in front of its first line, and what is printed then. A step without a command is
/// text between the transcripts of a document.
struct Step {
    std::string command;
    Lines lines;
};

Lines linesOf(std::istream& stream) {
    Lines lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// A file that ends in ".console" is a transcript as a whole; of a document its blocks that begin with "```console".
std::vector<Step> readSteps(const fs::path& path) {
    const bool isDocument = path.extension() != ".console";
    bool isInside = !isDocument;
    std::ifstream file(path);
    std::vector<Step> steps(1);
    for (const auto& line : linesOf(file)) {
        if (isDocument && line.rfind("```", 0) == 0) {
            isInside = line == "```console";
            steps.push_back({"", {line}});
        } else if (isInside && line.rfind("$ ", 0) == 0) {
            steps.push_back({line.substr(2), {}});
        } else {
            steps.back().lines.push_back(line);
        }
    }
    return steps;
}

std::string textOf(const Step& step) {
    std::string text = step.command.empty() ? "" : "$ " + step.command + "\n";
    for (const auto& line : step.lines) {
        text += line + "\n";
    }
    return text;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

bool matches(const Lines& shown, std::size_t s, const Lines& lines, std::size_t l) {
    if (s == shown.size()) {
        return l == lines.size();
    }
    if (shown[s] == anyLines) {
        return matches(shown, s + 1, lines, l) || (l < lines.size() && matches(shown, s, lines, l + 1));
    }
    return l < lines.size() && shown[s] == lines[l] && matches(shown, s + 1, lines, l + 1);
}

/// What is another one each time has a name in transcripts.
std::string withoutChance(std::string line) {
    static const std::vector<std::pair<std::regex, const char*>> chances{
        {std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d+Z|\w{3}, \d\d \w{3} \d{4} \d\d:\d\d:\d\d GMT)"), "<time>"},
        {std::regex(R"(127\.0\.0\.1:\d{4,5})"), "127.0.0.1:<port>"},
        {std::regex(R"(\bdesk[0-9a-f]{20}\b)"), "<device>"},
        {std::regex(R"("seconds": [0-9.e-]+)"), R"("seconds": <seconds>)"},
        {std::regex(R"(time="[0-9.]+")"), R"(time="<seconds>")"},
        {std::regex(R"(\b[0-9]+\.[0-9]+ s\b)"), "<seconds> s"},
    };
    for (const auto& [chance, name] : chances) {
        line = std::regex_replace(line, chance, name);
    }
    return line;
}

/// Plays a transcript in one shell, as a user does who is in the folder of the sources. What it names in /tmp is in
/// a folder of the test's own.
class Transcript : public Commands, public testing::WithParamInterface<fs::path> {
protected:
    Transcript() {
        fs::current_path(SOURCE_FOLDER);
        const auto programs = fs::path(DESKWATCH_PROGRAM).parent_path().string();
        setenv("PATH", (programs + ":" + std::getenv("PATH")).c_str(), 1);
        setenv(watch_clock::variable, watch_clock::standing,
               1); // no service is idle for long, however slow the machine
    }

    /// The steps with what is printed here and now.
    std::vector<Step> play(std::vector<Step> steps) const {
        const auto script = write("script.bash", scriptOf(steps)).string();
        const auto output = write("output", "").string();
        EXPECT_EQ(std::system(("bash " + script + " >" + output + " 2>&1 </dev/null").c_str()), 0);
        std::ifstream file(output);
        auto step = steps.begin();
        Lines lines;
        for (auto line : linesOf(file)) {
            if (line != endOfStep) {
                replaceAll(line, folder().string(), "/tmp");
                lines.push_back(withoutChance(line));
                continue;
            }
            step = std::find_if(step, steps.end(), [](const Step& next) { return !next.command.empty(); });
            if (!matches(step->lines, 0, lines, 0)) {
                step->lines = lines;
            }
            ++step;
            lines.clear();
        }
        return steps;
    }

private:
    static constexpr char endOfStep[] = "end of the step";

    /// In a document the text says how a command ends; elsewhere a line does when it fails.
    std::string scriptOf(const std::vector<Step>& steps) const {
        const bool tellsFailure = GetParam().extension() == ".console";
        std::string script = "trap 'kill $(jobs -p) 2>/dev/null; deskwatch off --all >/dev/null 2>&1' EXIT\n";
        for (const auto& step : steps) {
            if (!step.command.empty()) {
                script += step.command + "\nstatus=$?" +
                          (tellsFailure ? "; ((status == 0)) || echo \"[exit $status]\"" : "") + "\necho '" +
                          endOfStep + "'\n";
            }
        }
        replaceAll(script, "/tmp", folder().string());
        return script + "true\n";
    }
};

TEST_P(Transcript, ShowsWhatIsPrinted) {
    const auto shown = readSteps(GetParam());
    const auto printed = play(shown);
    std::string text;
    for (std::size_t step = 0; step < shown.size(); ++step) {
        EXPECT_EQ(textOf(shown[step]), textOf(printed[step]));
        text += textOf(printed[step]);
    }
    if (std::getenv("TESK_WRITE_TRANSCRIPTS") != nullptr) { // for whoever changes what is printed
        std::ofstream(GetParam()) << text;
    }
}

std::vector<fs::path> transcripts() {
    std::vector<fs::path> paths{fs::path(SOURCE_FOLDER) / "README.md"};
    for (const auto& entry : fs::directory_iterator(fs::path(SOURCE_FOLDER) / "tests/deskwatch/transcripts")) {
        paths.push_back(entry.path());
    }
    return paths;
}

INSTANTIATE_TEST_SUITE_P(All, Transcript, testing::ValuesIn(transcripts()),
                         [](const auto& instance) { return instance.param.stem().string(); });

} // namespace
} // namespace deskwatch
