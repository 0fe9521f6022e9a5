#include "discovery/ItemLabel.h"

#include <algorithm>

namespace nevo {

namespace {

/// A label of numbers alone tells a person nothing.
bool isTelling(const std::string& label) {
    return std::any_of(label.begin(), label.end(), [](char c) { return c < '0' || c > '9'; });
}

std::string without(std::string text, const std::string& part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

std::string withoutLastComponent(const std::string& bundleID) {
    auto dot = bundleID.rfind('.');
    return dot == std::string::npos ? "" : bundleID.substr(0, dot);
}

}  // namespace

std::string labelForPeople(const ScannedBarItem& item, const Workspace& workspace) {
    if (isTelling(item.label)) return item.label;
    // A helper process seldom has a name of its own; its application does.
    for (const std::string& bundleID :
         {item.bundleID, without(item.bundleID, ".helper"), withoutLastComponent(item.bundleID)}) {
        if (auto path = workspace.applicationPath(bundleID)) {
            return without(workspace.displayName(*path), ".app");
        }
    }
    return item.label;
}

}  // namespace nevo
