#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/RuleStore.h"
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
    void noteShelf(const std::string& line);
    void noteStart();

    void noteBundles(const std::vector<WindowNumber>& order);

    std::optional<Broken> checkClock();
    std::optional<Broken> checkCursor() const;
    std::optional<Broken> checkRow();
    std::optional<Broken> checkRules();
    std::optional<Broken> checkEnd();
    std::optional<Broken> checkState();
    std::optional<Broken> checkToggle() const;
    std::optional<Broken> checkTransparency() const;
    std::optional<Broken> checkPinned() const;
    std::optional<Broken> checkOpenSection();
    std::optional<Broken> checkShelf();
    std::optional<Broken> checkDecoys() const;
    std::optional<Broken> checkPresentation();
    std::optional<Broken> checkGrowth() const;

    /// Whether nothing but Nevo's own doing can have put the toggle off the screen.
    bool mustBeInReach(WindowNumber toggle) const;
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
