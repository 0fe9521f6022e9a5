#include "surfaces/PopoverContentView.h"

#include <string>
#include <utility>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr double symbolHeight = 18;

Control helpRow(const std::string& symbol, const std::string& key) {
    return rowOf({symbolOf(symbol, symbolHeight), wordsOf(key + ".title", key + ".description")});
}

}  // namespace

Control popoverContent(const AppState& appState, std::function<void()> openSettings) {
    const char* status =
        appState.isExpanded() ? "popover.status.expanded" : "popover.status.collapsed";
    return columnOf({textOf(status, Control::TextStyle::title),
                     helpRow("cursorarrow.click.2", "popover.click_to_toggle"),
                     helpRow("arrow.left.to.line", "popover.arrange_items"),
                     helpRow("info.circle", "popover.this_panel"),
                     buttonOf("popover.settings", std::move(openSettings))});
}

}  // namespace nevo
