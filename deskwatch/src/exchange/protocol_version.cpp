#include "exchange/protocol_version.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <sstream>

namespace deskwatch {
namespace {

constexpr std::array<int, 7> spoken{protocol::v2_5,  protocol::v12_0, protocol::v12_1, protocol::v14_0,
                                    protocol::v14_1, protocol::v16_0, protocol::v16_1};

} // namespace

std::string versionText(int version) {
    return std::to_string(version / 10) + "." + std::to_string(version % 10);
}

std::vector<std::string> versionTexts() {
    std::vector<std::string> texts;
    std::transform(spoken.begin(), spoken.end(), std::back_inserter(texts), versionText);
    return texts;
}

std::optional<int> versionOf(const std::string& text) {
    const auto* const found =
        std::find_if(spoken.begin(), spoken.end(), [&text](int version) { return versionText(version) == text; });
    return found != spoken.end() ? std::optional(*found) : std::nullopt;
}

std::optional<int> highestCommonVersion(const std::string& offered) {
    std::optional<int> highest;
    std::istringstream stream(offered);
    for (std::string text; std::getline(stream, text, ',');) {
        text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
        highest = std::max(highest, versionOf(text));
    }
    return highest;
}

} // namespace deskwatch
