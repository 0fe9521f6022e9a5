#include <algorithm>
#include <regex>

#include "lint/Checks.h"

namespace nevo::lint {

namespace {

struct Layer {
    std::string folder;
    /// Folders below src besides its own.
    std::vector<std::string> folders;
    /// Libraries besides the standard one, by the names of `libraryOf`.
    std::vector<std::string> libraries;
};

/// A folder that isn't listed may include everything. Longer names stand before those they begin
/// with.
const std::vector<Layer>& layers() {
    static const std::vector<Layer> table = {
        {"platform/menubar", {"platform"}, {}},
        {"platform/store", {"platform"}, {"nlohmann", "fmt", "posix"}},
        {"platform/xcb", {"platform", "platform/menubar"}, {"xcb", "fmt", "posix"}},
        {"platform/sim", {"platform", "platform/menubar"}, {"fmt"}},
        {"platform/x11",
         {"platform", "platform/menubar", "platform/store", "platform/xcb"},
         {"qt", "xcb", "systemd", "fmt", "posix"}},
        {"platform", {}, {}},
        {"statusnotifier", {"platform"}, {"systemd", "fmt", "posix"}},
        {"menubar",
         {"platform", "platform/menubar", "platform/store", "platform/xcb", "statusnotifier"},
         {"xcb", "cairo", "nlohmann", "fmt", "posix"}},
        {"trayhelper", {"platform", "platform/x11"}, {"qt", "xcb", "fmt", "posix"}},
        // The texts of each language are made into headers at build time.
        {"core", {"platform", "strings"}, {"nlohmann", "fmt"}},
        {"discovery", {"platform", "core"}, {"nlohmann", "fmt"}},
        {"placement", {"platform", "core", "discovery"}, {"nlohmann", "fmt"}},
        {"shelf", {"platform", "core", "discovery", "placement"}, {"nlohmann", "fmt"}},
        {"surfaces", {"platform", "core", "discovery", "placement"}, {"nlohmann", "fmt"}},
        {"controller",
         {"platform", "core", "discovery", "placement", "shelf", "surfaces"},
         {"nlohmann", "fmt"}},
        {"entry",
         {"platform", "core", "discovery", "placement", "shelf", "surfaces", "controller"},
         {"nlohmann", "fmt"}},
    };
    return table;
}

std::string libraryOf(const std::string& header) {
    static const std::vector<std::pair<std::string, std::regex>> table = {
        {"", std::regex("[a-z0-9_]+")},        {"qt", std::regex("(Qt[A-Za-z]*/)?[qQ].*")},
        {"xcb", std::regex("(xcb|X11)/.*")},   {"cairo", std::regex("(cairo/)?cairo.*")},
        {"systemd", std::regex("systemd/.*")}, {"nlohmann", std::regex("nlohmann/.*")},
        {"fmt", std::regex("fmt/.*")},         {"posix", std::regex("((sys|linux)/)?[a-z_]+\\.h")},
    };
    for (const auto& [library, pattern] : table) {
        if (std::regex_match(header, pattern)) return library;
    }
    return header;
}

bool contains(const std::vector<std::string>& list, const std::string& word) {
    return std::find(list.begin(), list.end(), word) != list.end();
}

bool allowed(const Layer& layer, const std::string& header, bool quoted) {
    if (!quoted) {
        std::string library = libraryOf(header);
        return library.empty() || contains(layer.libraries, library);
    }
    auto slash = header.rfind('/');
    if (slash == std::string::npos) return false;
    std::string folder = header.substr(0, slash);
    return folder == layer.folder || contains(layer.folders, folder);
}

}  // namespace

Findings includesAcrossLayers(const SourceFile& file) {
    if (!file.isCode()) return {};
    auto layer = std::find_if(layers().begin(), layers().end(),
                              [&](const Layer& l) { return file.isIn("src/" + l.folder); });
    if (layer == layers().end()) return {};

    static const std::regex include("(^|\n)#include ([\"<])([^\">]+)[\">]");
    Findings findings;
    std::string code = file.code();
    for (std::sregex_iterator match(code.begin(), code.end(), include), end; match != end;
         ++match) {
        std::string header = (*match)[3];
        if (allowed(*layer, header, (*match)[2] == "\"")) continue;
        std::size_t line = lineOf(code, static_cast<std::size_t>(match->position(3)));
        findings.push_back(file.path + ":" + std::to_string(line) + ": " + layer->folder +
                           " may not include " + header);
    }
    return findings;
}

}  // namespace nevo::lint
