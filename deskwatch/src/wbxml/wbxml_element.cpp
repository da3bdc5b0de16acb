#include "wbxml/wbxml_element.h"

#include <algorithm>

namespace deskwatch {

const WbxmlElement* WbxmlElement::child(std::string_view wanted) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [wanted](const WbxmlElement& element) { return element.name == wanted; });
    return found != children.end() ? &*found : nullptr;
}

const WbxmlElement* WbxmlElement::at(const std::vector<std::string_view>& path) const {
    const auto* element = this;
    for (const auto step : path) {
        element = element != nullptr ? element->child(step) : nullptr;
    }
    return element;
}

WbxmlElement provisionElement(std::string name, std::string text) {
    return {"Provision:", std::move(name), std::move(text), {}};
}

WbxmlElement provisionElement(std::string name, std::vector<WbxmlElement> children) {
    return {"Provision:", std::move(name), "", std::move(children)};
}

} // namespace deskwatch
