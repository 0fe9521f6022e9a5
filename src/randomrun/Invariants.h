#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/RuleStore.h"
#include "randomrun/LastingOrder.h"
#include "scenario/ScenarioRun.h"
#include "shelf/ShelfController.h"

namespace nevo {

/// Something that has to hold and doesn't.
struct Broken {
    /// Names the invariant, in one word.
    std::string invariant;
    std::string message;
};

/// What has to hold on a desktop while anything at all happens to it. Judged from outside, by what
/// can be seen and counted; the log tells which of the states that the behaviour allows for a while
/// may be seen now.
class Invariants {
public:
    explicit Invariants(ScenarioRun& of);

    /// To be told of each line of the trace.
    void noteTrace(const std::string& line);

    /// What has to hold after each line. Nothing when all is well.
    std::optional<Broken> afterLine();
    /// Whether nothing is under way but what waits for an event or a timer.
    bool isAtRest() const;
    /// Whether something was seen then that may be so for a moment only: it is to be looked at
    /// again.
    bool hasDoubts() const { return decoysDifferSince.has_value(); }
    /// Whether it has to come to that by itself.
    bool mustComeToRest() const;
    /// What has to hold then.
    std::optional<Broken> atRest();
    /// Looks at the section before a click on the toggle: whether it has to open or close it, with
    /// no setting and no fault in the way.
    bool beforeClick();
    /// What has to hold a moment after the click. Nothing when `beforeClick` has expected nothing.
    std::optional<Broken> afterClick() const;

private:
    void noteRule(const Notification& told);
    void noteAppRule(const Notification& told);
    void noteReason(const std::string& line);
    void noteTransparent();
    void noteShelf(const std::string& line);
    void noteHand(const std::string& line);
    void notePosition(const std::string& text);
    void noteStart();

    void noteBundles(const std::vector<WindowNumber>& order);

    std::optional<Broken> checkClock();
    std::optional<Broken> checkCursor() const;
    std::optional<Broken> checkRow();
    std::optional<Broken> checkOrder();
    std::optional<Broken> checkRules();
    std::optional<Broken> checkEnd();
    std::optional<Broken> checkState();
    std::optional<Broken> checkToggle() const;
    std::optional<Broken> checkTransparency() const;
    std::optional<Broken> checkPinned() const;
    std::optional<Broken> checkRoom() const;
    std::optional<Broken> checkOpenSection();
    std::optional<Broken> checkShelf();
    std::optional<Broken> checkDecoys();
    std::optional<Broken> checkWhichDecoys(const SimPanel* panel) const;
    std::vector<WindowNumber> decoysWanted() const;
    /// Whether decoys of them fit left of the toggle.
    bool haveRoom(const std::vector<WindowNumber>& windows) const;
    std::optional<Broken> checkPresentation();
    std::optional<Broken> checkGrowth() const;

    const ShelfController* shelf() const;
    /// Whether the shelf, or the bar that a program's rule opens, can be seen.
    bool isBarShown() const;
    /// How often one of the operations failed that bring an item out and take it back.
    int moveFailures() const;
    std::size_t mostTasks() const;
    bool isClickable() const;
    bool mustAnswerInPushMode() const;
    bool mustAnswerInShelfMode() const;
    bool isRuledHidden(WindowNumber window) const;
    bool isHiddenInFront(WindowNumber window) const;
    std::set<std::string> idsWithRules() const;
    bool isMovedByRule(WindowNumber window, const std::set<std::string>& ruled) const;
    std::vector<WindowNumber> claimsToRoom() const;
    std::string describedRow() const;
    int readFailures() const;
    bool isMarked(const SimBar::Item& item) const;
    ScannedBarItems seenItems() const;
    std::set<std::string> seenIds() const;
    bool isSomethingToHide() const;
    bool isAnythingTransparent() const;
    /// Items that can't be seen now that Nevo has gone.
    std::vector<std::string> strandedItems() const;
    /// Of Nevo, on both centres.
    std::size_t observerCount() const;

    ScenarioRun& run;
    SimDesktop& desktop;
    double lastTime = 0;

    /// The rules as they were set, and the store to compare them with.
    IconRules expectedRules;
    AppRules expectedAppRules;
    bool rulesWritten = false;
    bool rulesWrittenOutside = false;
    Signal storeChanges;
    RuleStore store;
    Registration ruleObserver;
    Registration appRuleObserver;

    LastingOrder rowOrder;
    std::vector<WindowNumber> lastRow;
    /// The label of the item that a hand drags, and of those that were dropped.
    std::string inHand;
    std::set<std::string> movedFreely;
    std::set<std::string> movedByNevo;
    /// As they were when Nevo was last at rest.
    int readFailuresAtRest = 0;
    int moveFailuresAtRest = 0;
    /// Domains and names of items that have a place elsewhere when they come.
    std::set<std::pair<std::string, std::string>> positionsWritten;
    /// Ids of items that a rule has moved and that haven't gone back yet.
    std::vector<std::string> idsAway;
    bool placesChanged = false;
    /// Ids whose rule has changed, or that have gone back, since Nevo was last at rest.
    std::set<std::string> touchedRules;
    /// As Nevo has scanned them since it was last at rest, or before.
    std::map<WindowNumber, std::set<std::string>> idsOfWindows;
    /// The items that had those ids then.
    std::set<WindowNumber> touchedWindows;

    bool wasRunning = false;
    /// Nevo has quit: when what it left behind is to be looked at.
    std::optional<double> leftoversDueAt;
    int alphaFailuresAtStart = 0;

    /// Why the section may be seen out of step, until it is seen in step again.
    bool mayBeClosedUnasked = false;
    bool mayBeOpenUnasked = false;
    bool ownPlacesWritten = false;
    /// Why the shelf may be closed or open without its controller's doing.
    bool mayBarDiffer = false;
    /// Until something happens: since when the wrong pictures stand in the bar.
    std::optional<double> decoysDifferSince;
    struct BroughtOut {
        WindowNumber window = 0;
        /// As they were when it began.
        int moveFailures = 0;
    };
    /// Items that the shelf brings out, now and since they were last seen in their places.
    WindowNumber comingOut = 0;
    std::vector<BroughtOut> broughtOut;

    /// Windows that may be transparent in an open section, as the log tells.
    std::set<WindowNumber> hiddenWithReason;
    std::set<WindowNumber> shownForNow;
    /// Programs that have had more than one item at a time.
    std::set<std::string> bundlesOfSeveral;
    /// At the last click of which something was expected.
    std::optional<bool> wasExpandedBeforeClick;
    std::optional<bool> wasShelfShownBeforeClick;
};

}  // namespace nevo
