#include "surfaces/MenuBarLayoutView.h"

#include <iterator>
#include <string>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr double sampleSize = 18;
constexpr const char* hiddenSamples[] = {"bubble.left.fill", "doc.on.clipboard"};
constexpr const char* visibleSamples[] = {"speaker.wave.2.fill", "battery.75percent"};

struct Step {
    const char* symbol;
    /// Whether the picture of the open bar shows what it speaks of, or that of the closed one.
    bool isOfExpandedBar;
};
constexpr Step layoutSteps[] = {{"cursorarrow.click.2", false},
                                {"arrow.left.to.line", true},
                                {"switch.2", false},
                                {"line.3.horizontal.decrease", true}};

}  // namespace

Control MenuBarLayoutView::content() {
    bool isOfExpandedBar = layoutSteps[showingStep - 1].isOfExpandedBar;
    Control steps = sectionOf("layout.how_it_works", {});
    for (int number = 1; number <= static_cast<int>(std::size(layoutSteps)); ++number)
        steps.children.push_back(step(number));
    return columnOf(
        {rowOf({picture(true, isOfExpandedBar), picture(false, !isOfExpandedBar)}), steps});
}

void MenuBarLayoutView::showStep(int number) {
    showingStep = number;
    onChange();
}

Control MenuBarLayoutView::picture(bool isExpanded, bool isMarked) {
    Control bar;
    bar.kind = Control::Kind::card;
    bar.key = isExpanded ? "layout.expanded" : "layout.collapsed";
    bar.title = text(bar.key + "_label");
    bar.isOn = isMarked;
    // The first step that speaks of it.
    bar.press = [weak = weak_from_this(), number = isExpanded ? 2 : 1] {
        if (auto self = weak.lock()) self->showStep(number);
    };
    Control toggle;
    toggle.kind = Control::Kind::image;
    toggle.image = appState.menuBarIconImage();
    Control stays = rowOf({toggle});
    for (const char* name : visibleSamples) stays.children.push_back(symbolOf(name, sampleSize));
    bar.children = {textOf(bar.key + "_label", Control::TextStyle::title)};
    if (isExpanded) {
        Control hides = rowOf({});
        for (const char* name : hiddenSamples) hides.children.push_back(symbolOf(name, sampleSize));
        Control marked =
            columnOf({hides, textOf("layout.will_be_hidden", Control::TextStyle::note)});
        bar.children.push_back(
            rowOf({marked,
                   columnOf({stays, textOf("layout.always_visible", Control::TextStyle::note)})}));
    } else {
        bar.children.push_back(stays);
        bar.children.push_back(textOf("layout.collapsed_description", Control::TextStyle::note));
    }
    return bar;
}

Control MenuBarLayoutView::step(int number) {
    std::string key = "layout.step" + std::to_string(number);
    Control card;
    card.kind = Control::Kind::card;
    card.key = key;
    card.title = text(key + ".title");
    card.isOn = number == showingStep;
    card.press = [weak = weak_from_this(), number] {
        if (auto self = weak.lock()) self->showStep(number);
    };
    card.children = {rowOf({symbolOf(layoutSteps[number - 1].symbol, sampleSize),
                            wordsOf(key + ".title", key + ".description")})};
    return card;
}

}  // namespace nevo
