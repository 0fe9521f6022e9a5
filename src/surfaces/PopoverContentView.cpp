#include "surfaces/PopoverContentView.h"

#include "core/Texts.h"

namespace nevo {

namespace {

PopoverRow helpRow(const std::string& key, const std::string& symbol) {
    return {key, text(key + ".title"), text(key + ".description"), symbol};
}

}  // namespace

std::vector<PopoverRow> popoverContent(const AppState& appState) {
    std::string status =
        appState.isExpanded() ? "popover.status.expanded" : "popover.status.collapsed";
    return {{status, text(status), "", ""},
            helpRow("popover.click_to_toggle", "cursorarrow.click.2"),
            helpRow("popover.arrange_items", ""),
            helpRow("popover.this_panel", "")};
}

}  // namespace nevo
