#include <fmt/format.h>

#include <algorithm>
#include <tuple>

#include "scenario/commandSupport.h"

namespace nevo {

namespace {

constexpr const char* slotPrefix = "slot:";
constexpr const char* decoyPrefix = "decoy:";

/// The items that a panel shows, row by row from left to right, by the names that scenarios give
/// them.
std::string itemsIn(ScenarioRun& run, const SimPanel* panel, const std::string& prefix) {
    std::vector<PanelView> views;
    if (panel != nullptr) views = panel->views();
    std::sort(views.begin(), views.end(), [](const PanelView& a, const PanelView& b) {
        return std::tie(b.frame.y, a.frame.x) < std::tie(a.frame.y, b.frame.x);
    });
    std::string names;
    for (const PanelView& view : views) {
        if (!view.key.starts_with(prefix)) continue;
        auto window = static_cast<WindowNumber>(std::stoul(view.key.substr(prefix.size())));
        const SimBar::Item* item = run.desktop().bar.find(window);
        names += (item == nullptr ? "gone" : run.shortName(item->label)) + " ";
    }
    return names;
}

/// The panel that the shelf's slots are in, or one that fades without any.
SimPanel* shelfPanel(ScenarioRun& run) { return panelWith(run, slotPrefix); }

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += name + " ";
    return text;
}

Step readShelf(LineReader& reader) {
    std::string expected = reader.choice("the state", {"shown", "closed"});
    std::vector<std::string> items = reader.rest("ITEM", 0);
    return [=](ScenarioRun& run) {
        SimPanel* panel = shelfPanel(run);
        bool shown = panel != nullptr && panel->alpha() > 0;
        auto state = Outcome::compare("the shelf", expected, shown ? "shown" : "closed");
        if (!state || items.empty()) return state;
        return Outcome::compare("the slots", joined(items), itemsIn(run, panel, slotPrefix));
    };
}

Step readDecoys(LineReader& reader) {
    std::vector<std::string> items = reader.rest("ITEM", 0);
    return [=](ScenarioRun& run) {
        return Outcome::compare("the decoys", joined(items),
                                itemsIn(run, panelWith(run, decoyPrefix), decoyPrefix));
    };
}

Step readSlot(LineReader& reader) {
    std::string item = reader.word("ITEM");
    std::string what =
        reader.choice("what of it", {"image", "tint", "text", "x", "alpha", "focus"});
    std::string expected = reader.word("VALUE");
    return withWindow(item, [=](ScenarioRun& run, WindowNumber window) {
        SimPanel* panel = shelfPanel(run);
        const PanelView* view =
            panel == nullptr ? nullptr : panel->view(slotPrefix + std::to_string(window));
        if (view == nullptr) return Outcome::failed("no slot shows " + item);
        std::string actual;
        if (what == "image") actual = view->image ? view->image->source : "none";
        if (what == "tint") actual = yesOrNo(view->contentTintColor.has_value());
        if (what == "text") actual = view->text;
        if (what == "x") actual = fmt::format("{}", view->frame.x);
        if (what == "alpha") actual = fmt::format("{}", view->alpha);
        if (what == "focus") {
            const PanelView* ring = panel->view("focus");
            actual = yesOrNo(ring != nullptr && ring->borderWidth > 0 &&
                             ring->frame.center() == view->frame.center());
        }
        return Outcome::compare(what + " of the slot of " + item, expected, actual);
    });
}

Step readPanelFrame(LineReader& reader, const char* prefix, const char* name) {
    double x = reader.number("X");
    double y = reader.number("Y");
    double width = reader.number("WIDTH");
    double height = reader.number("HEIGHT");
    return [=](ScenarioRun& run) {
        SimPanel* panel = panelWith(run, prefix);
        if (panel == nullptr) return Outcome::failed("there is no such panel");
        Rect frame = run.desktop().screens.flipped(panel->frame());
        auto words = [](const Rect& r) {
            return fmt::format("{} {} {} {}", r.x, r.y, r.width, r.height);
        };
        return Outcome::compare(name, words({x, y, width, height}), words(frame));
    };
}

Step readCovers(LineReader& reader) {
    int expected = reader.whole("COUNT");
    return [expected](ScenarioRun& run) {
        auto visible = run.desktop().panels.visible();
        auto count = std::count_if(visible.begin(), visible.end(), [](const SimPanel* panel) {
            return panel->view("cover") != nullptr;
        });
        return Outcome::compare("the covers", std::to_string(expected), std::to_string(count));
    };
}

}  // namespace

SimPanel* panelWith(ScenarioRun& run, const std::string& keyPrefix) {
    for (SimPanel* panel : run.desktop().panels.visible()) {
        const auto& views = panel->views();
        bool has = std::any_of(views.begin(), views.end(), [&](const PanelView& view) {
            return view.key.starts_with(keyPrefix);
        });
        if (has) return panel;
    }
    return nullptr;
}

std::optional<Rect> pictureOf(ScenarioRun& run, const std::string& kind, WindowNumber window) {
    std::string prefix = kind == "slot" ? slotPrefix : decoyPrefix;
    SimPanel* panel = panelWith(run, prefix);
    const PanelView* view =
        panel == nullptr ? nullptr : panel->view(prefix + std::to_string(window));
    if (view == nullptr) return std::nullopt;
    Rect onScreen{panel->frame().x + view->frame.x, panel->frame().y + view->frame.y,
                  view->frame.width, view->frame.height};
    return run.desktop().screens.flipped(onScreen);
}

std::vector<Command> panelCommands() {
    return {
        {"expect shelf", "shown|closed [ITEM]...",
         "Whether the shelf can be seen, and the items in its slots row by row.", readShelf},
        {"expect slot", "ITEM image|tint|text|x|alpha|focus VALUE",
         "What the item's slot shows. An image is named by its source; tint is yes when it is "
         "drawn in the theme's colour, focus is yes when keys are for it.",
         readSlot},
        {"expect shelf-frame", "X Y WIDTH HEIGHT",
         "The shelf's frame, origin at the top left of the main display.",
         [](LineReader& reader) {
             return readPanelFrame(reader, slotPrefix, "the shelf's frame");
         }},
        {"expect decoys", "[ITEM]...", "The items that decoys stand for, from left to right.",
         readDecoys},
        {"expect decoys-frame", "X Y WIDTH HEIGHT",
         "The frame of the panel that decoys stand in, origin at the top left of the main display.",
         [](LineReader& reader) {
             return readPanelFrame(reader, decoyPrefix, "the decoys' frame");
         }},
        {"expect covers", "COUNT", "How many displays have their menu bar covered.", readCovers},
    };
}

}  // namespace nevo
