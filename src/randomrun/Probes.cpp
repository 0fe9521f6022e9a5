#include "randomrun/Probes.h"

#include <string_view>
#include <unordered_map>

namespace nevo {

namespace {

/// Where a trace line has the text of a log line.
constexpr std::string_view logKind = "log      ";
constexpr std::size_t kindAt = 12;
/// Probes are looked up by so much of their beginning; none is shorter.
constexpr std::size_t keyLength = 14;
constexpr std::string_view anything = "...";

/// The index of each probe under its key.
const std::unordered_map<std::string_view, std::vector<std::size_t>>& probesByKey() {
    static const auto table = [] {
        std::unordered_map<std::string_view, std::vector<std::size_t>> result;
        for (std::size_t i = 0; i < Probes::texts().size(); ++i) {
            result[std::string_view(Probes::texts()[i]).substr(0, keyLength)].push_back(i);
        }
        return result;
    }();
    return table;
}

/// Whether `line` begins as `probe` does and has its further parts, in their order.
bool matches(std::string_view line, std::string_view probe) {
    std::size_t at = 0;
    bool first = true;
    while (!probe.empty()) {
        auto end = std::min(probe.find(anything), probe.size());
        auto found = line.find(probe.substr(0, end), at);
        if (found == std::string_view::npos || (first && found != 0)) return false;
        at = found + end;
        probe.remove_prefix(std::min(end + anything.size(), probe.size()));
        first = false;
    }
    return true;
}

}  // namespace

/// The log lines that tell of a turn; "..." stands for anything. Sorted as the folders and files
/// that write them are.
const std::vector<std::string>& Probes::texts() {
    static const std::vector<std::string> table = {
        // The toggle's place.
        "[Nevo] canonical toggle X recorded",
        "[Nevo] canonical toggle X UPDATED",
        "[Nevo] compensateDrift skipped: canonicalToggleX",
        "[Nevo] compensateDrift skipped: toggleItemFrame",
        "[Nevo] compensateDrift: ... no move",
        "[Nevo] compensateDrift: ... move true",
        "[Nevo] compensateDrift: ... move false",
        "[Nevo] RESCUE: ... ok=true",
        "[Nevo] RESCUE: ... ok=false",
        // The first collapse, and the later ones.
        "[Nevo] Attempt 0:",
        "[Nevo] Attempt 29:",
        "[Nevo] Attempt ... usable=false",
        "[Nevo] Gave up waiting for stable position after 30",
        "[Nevo] auto-hide skipped",
        "[Nevo] No items to hide",
        "[Nevo] Display mode changed to shelfMode=true",
        "[Nevo] Display mode changed to shelfMode=false",
        // Displays and sleep.
        "[Nevo] Screen configuration changed, isExpanded=true",
        "[Nevo] Screen configuration changed, isExpanded=false",
        "[Nevo] Already handling screen change",
        "[Nevo] Screen change attempt ... usable=false",
        "[Nevo] Screen change: toggle stable",
        "[Nevo] Screen change: gave up",
        "[Nevo] Screen change: re-applying hide",
        "[Nevo] Menu bar layout changed",
        "[Nevo] recompensatePositionAfterWake reason=didWake",
        "[Nevo] recompensatePositionAfterWake reason=screensDidWake",
        "[Nevo] recompensatePositionAfterWake reason=sessionDidBecomeActive",
        "[Nevo] post-wake (collapsed push)",
        "[Nevo] post-wake (collapsed shelf)",
        // Hovering.
        "[Hover] mouse in button area",
        "[Hover] triggering toggle()",
        "[Hover] mouse left button area",
        "[Hover] delayed guard failed",
        "[Hover] shelf guard failed",
        // Rules.
        "[Rules] skip stale notification",
        "[Rules] skip duplicate",
        "[Rules] handleRuleChange skip phantom",
        "[Rules] handleRuleChange: not found in snapshot",
        "[Rules] handleRuleChange: item not found even after",
        "[Rules] handleRuleChange rule=alwaysShow",
        "[Rules] handleRuleChange rule=alwaysHide",
        "[Rules] handleRuleChange rule=auto",
        "[Rules] findItem: exact miss",
        "[Rules] findItem: PID fallback matched",
        "[Rules] auto (collapsed): keep hidden",
        "[Rules] auto: restored",
        "[Rules] alwaysShow: wid=... secondary screen",
        "[Rules] alwaysShow: SLSMoveWindow ok=true",
        "[Rules] alwaysShow: wid=... already visible",
        "[Rules] alwaysShow: wid=... from=... to=(",
        "[Rules] alwaysHide wid=... ok=true",
        "[Rules] alwaysHide wid=... ok=false",
        "[Rules] alwaysHide moveItem ... moved=true",
        "[Rules] alwaysHide moveItem ... moved=false",
        "[Rules] updateAlwaysHiddenDivider: alwaysHide=0",
        "[Rules] updateAlwaysHiddenDivider: alwaysHide=1",
        "[Rules] ambiguous OneDrive fallback",
        "[Rules] startup restored",
        "[Rules] replayAllRulesOnStartup: no rules",
        "[Rules] replayAllRulesOnStartup: snapshot empty",
        "[Rules] replayAllRulesOnStartup: replaying",
        "[Rules] replayAllRulesOnStartup: done",
        "[Rules] replay skip phantom",
        "[Rules] replay alwaysShow prep",
        "[Rules] replay alwaysHide prep ... alphaOk=true",
        "[Rules] replay alwaysHide prep ... alphaOk=false",
        "[Rules] replay alwaysHide prep ... readback=-1",
        "[Rules] moveAlwaysShowItems: no eligible items",
        "[Rules] moveAlwaysShowItems: all ... already in safe zone",
        "[Rules] moveAlwaysShowItems: no right safe zone",
        "[Rules] moveAlwaysShowItems: moving",
        "[Rules] moveAlwaysShowItems: wid=... ok=true",
        "[Rules] moveAlwaysShowItems: wid=... ok=false",
        // The monitor of items.
        "[ItemMonitor] alwaysShow drift ... protected=true",
        "[ItemMonitor] alwaysShow drift ... protected=false",
        "[ItemMonitor] alwaysShow protected already-visible",
        "[ItemMonitor] alpha-hide",
        "[ItemMonitor] alwaysHide enforced",
        "[Reconcile] Keeping alwaysShow",
        "[Reconcile] Keeping alwaysHide",
        // Drags by hand.
        "[CmdDrag] event tap created OK",
        "[CmdDrag] event tap FAILED",
        "[CmdDrag] tap disabled",
        "[CmdDrag] tap: dragged with cmd",
        "[CmdDrag] global: dragged with cmd",
        "[CmdDrag] started: ... draggingToggle=true",
        "[CmdDrag] started: ... draggingToggle=false",
        "[CmdDrag] reconcile: hide",
        "[CmdDrag] reconcile: clear alwaysShow rule",
        "[CmdDrag] reconcile: clear alwaysShow for",
        "[CmdDrag] reconciled and divider re-collapsed",
        "[CmdDrag] post-drag snapshot refreshed",
        "[CmdDrag] toggle item dragged",
        // The shelf.
        "[Nevo] No shelf items found",
        "[Shelf] toggle repairing",
        "[Shelf] toggle START from=toggleShelf state=collapsed",
        "[Shelf] toggle START from=repairShelf",
        "[Shelf] toggle ignored",
        "[Shelf] toggle panelVisible -> collapsed",
        "[Shelf] toggle presentingItem -> panelVisible",
        "[Shelf] Cannot show shelf",
        "[Shelf] no cached items",
        "[Shelf] showing panel cached=",
        "[Shelf] panel visible count=",
        "[Shelf] displayItems: using shelf cache fallback",
        "[Shelf] displayItems: hidden=",
        "[Shelf] cache was empty; opening panel",
        "[Shelf] No items to show in shelf",
        "[Shelf] dismissShelf",
        "[Shelf] onItemsPushed",
        "[Shelf] updateCachedItemsAfterDrag",
        "[Shelf] context menu applied",
        "[Shelf] saved custom order",
        "[NevoBar] Item clicked: ... callback=true",
        "[NevoBar] Item right-clicked",
        "[NevoBar] No items found",
        "[NevoBar] slots renewed",
        // Items that it brings out.
        "[Shelf] presentItem begin",
        "[Shelf] presentItem resolved",
        "[Shelf] presentItem failed: missing hidden bounds",
        "[Shelf] presentItem failed to move",
        "[Shelf] presentItem visible",
        "[Shelf] presentItem 60s timeout",
        "[Shelf] presentItem task cancelled",
        "[Shelf] moveItem SLSMoveWindow direct ... ok=true",
        "[Shelf] moveItem SLSMoveWindow direct ... ok=false",
        "[Shelf] direct move failed; safe synthetic drag",
        "[Shelf] move back ... ok=true",
        "[Shelf] move back ... ok=false",
        "[Shelf] finishPresentation called cancelled=true",
        "[Shelf] finishPresentation called cancelled=false hasActive=true",
        "[Shelf] state -> collapsed",
        "[Shelf] restoring panel after presentation interrupt",
        "[Shelf] keeping state=panelVisible",
        "[Shelf] keeping state=collapsed",
        // Decoys.
        "[Decoy] panel shown",
        "[Decoy] no toggle frame",
        "[Decoy] click forwarded",
        "[Decoy] click: entry not found",
        "[Decoy] click: failed to create events",
        "[Decoy] capture failed",
        // Rules of applications.
        "[AppRule] Applied",
        "[AppRule] Hide ",
        "[AppRule] Showing",
        "[AppRule] Show alpha-hidden",
        "[AppRule] Restoring overrides",
        // Dividers and sections.
        "[Classify] fallback to divider midX",
        "[Classify] using toggle origin.x",
        "[Classify] no reference frame",
        "[Classify] scoped to screen",
        "[SectionMgr] alwaysHiddenDivider recreated",
        "[SectionMgr] alwaysHiddenDivider deactivated",
        "[SectionMgr] reapplyDividerVisibilityAfterWake: ... alwaysHiddenActive=true",
        "[SectionMgr] restored",
        "[SectionMgr] wrote",
        // Moves.
        "[SBC] moveItem attempt=1",
        "[SBC] moveItem attempt=4",
        "[SBC] moveItem SLSMoveWindow fallback ... ok=true",
        "[SBC] moveItem SLSMoveWindow fallback ... ok=false",
        // Scans and pictures.
        "[MenuBarScanner] No menu bar windows returned",
        "[MenuBarScanner] CGWindowListCopyWindowInfo failed",
        "[MenuBarScanner] level FAILED",
        "[MenuBarScanner] bounds FAILED",
        "[MenuBarScanner] using cached scan",
        "[MenuBarScanner] all ... from cache",
        "[MenuBarScanner] SCK fallback",
        "[MenuBarScanner] composite OK",
        "[MenuBarScanner] fallback wid",
        "[MenuBarScanner] fallback using NSRunningApplication.icon",
        "[MenuBarScanner AX] AXIsProcessTrusted=false",
        "[SCK] SCShareableContent failed",
        "[SCK] captureImage failed",
        "[SCK] capture done",
        "[Updates] check requested",
    };
    return table;
}

Probes::Probes() : reached(texts().size()) {}

void Probes::noteTrace(const std::string& line) {
    std::string_view text = line;
    if (text.size() < kindAt || !text.substr(kindAt).starts_with(logKind)) return;
    text.remove_prefix(kindAt + logKind.size());
    auto probes = probesByKey().find(text.substr(0, keyLength));
    if (probes == probesByKey().end()) return;
    for (std::size_t index : probes->second) {
        if (matches(text, texts()[index])) ++reached[index];
    }
}

void Probes::add(const Probes& other) {
    for (std::size_t i = 0; i < reached.size(); ++i) reached[i] += other.reached[i];
}

std::vector<std::string> Probes::neverReached() const {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < reached.size(); ++i) {
        if (reached[i] == 0) result.push_back(texts()[i]);
    }
    return result;
}

}  // namespace nevo
