#include <nlohmann/json.hpp>

#include "check/findings.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

using OrderedJson = nlohmann::ordered_json;

const char* nameOf(Finding::Kind kind) {
    switch (kind) {
    case Finding::Kind::Store:
        return "store";
    case Finding::Kind::Administrator:
        return "administrator";
    case Finding::Kind::Refused:
        return "refused";
    case Finding::Kind::OddValue:
        return "odd value";
    case Finding::Kind::Merge:
        return "merge";
    case Finding::Kind::Changed:
        return "changed";
    case Finding::Kind::Lock:
        return "lock";
    case Finding::Kind::Encryption:
        return "encryption";
    case Finding::Kind::MissingAccount:
        break;
    }
    return "missing account";
}

} // namespace

std::string findingsText(const std::vector<Finding>& findings, int wipes) {
    std::string text = wipes == 0 ? ""
                                  : "the internal storage was wiped since the boot: a device loses its accounts with "
                                    "it; the desk keeps them, and checks them\n";
    if (findings.empty()) {
        return text + "the watch is as strict as its accounts want\n";
    }
    for (const auto& finding : findings) {
        text += finding.text + "\n";
        for (const auto& detail : finding.details) {
            text += "  " + detail + "\n";
        }
    }
    return text;
}

std::string findingsJson(const std::vector<Finding>& findings, int wipes) {
    OrderedJson object{{"wipes", wipes}, {"findings", OrderedJson::array()}};
    for (const auto& finding : findings) {
        object["findings"].push_back(
            {{"kind", nameOf(finding.kind)}, {"text", finding.text}, {"details", finding.details}});
    }
    return jsonText(object, 2) + "\n";
}

} // namespace deskwatch
