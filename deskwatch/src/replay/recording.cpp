#include "replay/recording.h"

#include <sstream>
#include <stdexcept>

#include "replay/event_form.h"
#include "text/input_file.h"
#include "text/json_input.h"

namespace deskwatch {
namespace {

/// What is wrong with a line, and its place there: "12: not a ...".
[[noreturn]] void fail(const std::string& place, std::size_t column, const std::string& why) {
    throw std::runtime_error(place + ":" + std::to_string(column) + ": not a line of a recording: " + why);
}

/// The column where a member of that name begins; the first one when there is none.
std::size_t columnOf(const std::string& member, const std::string& text) {
    const std::string name = "\"" + member + "\"";
    for (auto at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
        const auto next = text.find_first_not_of(" \t", at + name.size());
        if (next != std::string::npos && text[next] == ':') {
            return at + 1;
        }
    }
    return 1;
}

template <class Use>
void read(const std::string& text, const std::string& place, const Use& use) {
    try {
        use(TraceEvent::parse(text));
    } catch (const TraceEvent::parse_error& error) {
        fail(place, error.byte, jsonFault(error));
    } catch (const FormError& error) {
        fail(place, columnOf(error.member(), text), error.what());
    } catch (const std::exception& error) {
        fail(place, 1, error.what());
    }
}

} // namespace

Recording readRecording(const std::filesystem::path& file) {
    constexpr std::size_t mostBytes = 100'000'000;
    std::istringstream stream(readInput(file, mostBytes));
    Recording recording;
    std::string text;
    for (std::size_t line = 1; std::getline(stream, text); ++line) {
        const auto place = inputName(file) + ":" + std::to_string(line);
        read(text, place, [&](TraceEvent&& event) {
            if (line == 1) {
                recording.state = stateOf(event);
                recording.head = text;
                recording.hasWipes = event["recording"] != 1;
            } else {
                requireEvent(event);
                recording.events.push_back({std::move(event), line, text});
            }
        });
    }
    if (recording.events.empty()) {
        throw std::runtime_error(inputName(file) + " has no event to replay");
    }
    return recording;
}

} // namespace deskwatch
