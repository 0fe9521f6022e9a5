#include "menubar/Options.h"

#include <fmt/format.h>

#include <charconv>
#include <map>

namespace nevo::menubar {

const char* const helpText =
    "Usage: nevo-menubar [OPTION]...\n"
    "A menu bar for X11 that holds the status items (system tray icons) of programs.\n"
    "\n"
    "  --height N              thickness of the bar in pixels, 16 to 128 (default: 24, and more\n"
    "                          where Xft.dpi is above 96); the size of all else follows it\n"
    "  --no-clock              leave the clock away, for which the bar wakes up once a minute\n"
    "  --drag-modifier NAME    key held to drag an item with button 1: super (default), ctrl, alt\n"
    "  --items                 list the items of the bar that runs, and what each is known by\n"
    "  --help                  show this text\n";

namespace {
bool parseHeight(const std::string& text, Options& options, std::string& failure) {
    int value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < smallestHeight ||
        value > largestHeight) {
        failure = fmt::format("--height needs a number from {} to {}, not \"{}\".", smallestHeight,
                              largestHeight, text);
        return false;
    }
    options.height = value;
    return true;
}

bool parseModifier(const std::string& text, Options& options, std::string& failure) {
    const std::map<std::string, std::uint16_t> modifiers{
        {"super", XCB_MOD_MASK_4}, {"ctrl", XCB_MOD_MASK_CONTROL}, {"alt", XCB_MOD_MASK_1}};
    auto found = modifiers.find(text);
    if (found == modifiers.end()) {
        failure = fmt::format("--drag-modifier can be super, ctrl or alt, but not \"{}\".", text);
        return false;
    }
    options.dragModifier = found->second;
    return true;
}
}  // namespace

std::optional<Options> parseOptions(const std::vector<std::string>& arguments,
                                    std::string& failure) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool takesValue = argument == "--height" || argument == "--drag-modifier";
        if (takesValue && i + 1 == arguments.size()) {
            failure = fmt::format("{} needs a value; see --help.", argument);
            return std::nullopt;
        }
        if (argument == "--help") {
            options.help = true;
        } else if (argument == "--items") {
            options.listsItems = true;
        } else if (argument == "--no-clock") {
            options.clock = false;
        } else if (argument == "--height") {
            if (!parseHeight(arguments[++i], options, failure)) return std::nullopt;
        } else if (argument == "--drag-modifier") {
            if (!parseModifier(arguments[++i], options, failure)) return std::nullopt;
        } else {
            failure = fmt::format("Unknown option \"{}\"; see --help.", argument);
            return std::nullopt;
        }
    }
    return options;
}

}  // namespace nevo::menubar
