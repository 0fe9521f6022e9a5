#include "surfaces/MenuBarLayoutView.h"

#include <string>

#include "core/MenuBarIcon.h"
#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr double sampleSize = 18;
constexpr const char* hiddenSamples[] = {"bubble.left.fill", "doc.on.clipboard"};
constexpr const char* toggleSample = "line.3.horizontal.decrease";
constexpr const char* visibleSamples[] = {"speaker.wave.2.fill", "battery.75percent"};
constexpr const char* stepSymbols[] = {"cursorarrow.click.2", "arrow.left.to.line", "switch.2",
                                       "line.3.horizontal.decrease"};

Control sample(const std::string& name) {
    Control made;
    made.kind = Control::Kind::symbol;
    made.symbol = name;
    made.number = sampleSize;
    return made;
}

/// The menu bar in one of its states.
Control picture(bool isExpanded) {
    Control bar;
    bar.kind = Control::Kind::card;
    bar.key = isExpanded ? "layout.expanded" : "layout.collapsed";
    Control items = rowOf({});
    if (isExpanded) {
        for (const char* name : hiddenSamples) items.children.push_back(sample(name));
    }
    items.children.push_back(sample(toggleSample));
    for (const char* name : visibleSamples) items.children.push_back(sample(name));
    bar.children = {textOf(isExpanded ? "layout.expanded_label" : "layout.collapsed_label",
                           Control::TextStyle::title),
                    items};
    if (isExpanded) {
        bar.children.push_back(rowOf({textOf("layout.will_be_hidden", Control::TextStyle::note),
                                      textOf("layout.always_visible", Control::TextStyle::note)}));
    } else {
        bar.children.push_back(textOf("layout.collapsed_description", Control::TextStyle::note));
    }
    return bar;
}

}  // namespace

Control menuBarLayoutView() {
    Control steps = sectionOf("layout.how_it_works", {});
    for (int step = 1; step <= 4; ++step) {
        std::string key = "layout.step" + std::to_string(step);
        Control words = textOf(key + ".title");
        words.detail = text(key + ".description");
        steps.children.push_back(rowOf({sample(stepSymbols[step - 1]), words}));
    }
    return columnOf({picture(true), picture(false), steps});
}

}  // namespace nevo
