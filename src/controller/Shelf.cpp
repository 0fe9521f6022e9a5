#include <fmt/format.h>

#include "controller/StatusBarController.h"
#include "core/Texts.h"
#include "core/debugLog.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

/// The floating bar has opened or closed by then.
constexpr double shelfSettleTime = 0.3;
constexpr Size promptSize{440, 420};
constexpr double promptSymbolSize = 88;
/// A moment after this process has gone.
constexpr const char* restartScript = "sleep 0.7; open \"$1\"";

/// What the prompt offers.
struct ShelfScreenRecordingPromptView {
    std::function<void()> openSettings;
    std::function<void()> restartNevo;
    std::function<void()> close;

    Control content() const {
        const std::string key = "shelf.screen_recording_prompt.";
        return columnOf(
            {symbolOf("rectangle.on.rectangle.badge.gearshape", promptSymbolSize),
             textOf(key + "title", Control::TextStyle::largeTitle), textOf(key + "body"),
             textOf(key + "note", Control::TextStyle::note),
             rowOf({buttonOf(key + "open_settings", openSettings), buttonOf(key + "not_now", close),
                    buttonOf(key + "restart", restartNevo)})});
    }
};

}  // namespace

ShelfController& StatusBarController::shelf() {
    if (!shelfController) {
        shelfController = ShelfController::create(platform, appState, nevoBar, sectionManager,
                                                  services.scanner, services.mover);
        shelfController->onOpened = [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->shelfHasOpened();
        };
        // However the bar has closed, the decoys take its place.
        shelfController->onClosed = [weak = weak_from_this()] {
            auto self = weak.lock();
            if (self)
                spawn(self->platform.runLoop, DecoyPanelController::rebuild(self->decoyController));
        };
    }
    return *shelfController;
}

void StatusBarController::bringOut(const std::string& persistedID) {
    ScannedBarItems all = snapshotItems({SectionName::hidden, SectionName::visible});
    const ScannedBarItem* item = findByPersistedID(all, persistedID);
    if (item == nullptr) return;
    shelf().bringOut(*item);
    if (!isShelfMode()) bindBarForPushMode();
}

void StatusBarController::bindBarForPushMode() {
    nevoBar->onItemRightClicked = nullptr;
    nevoBar->onItemClicked = [weak = weak_from_this()](const BarItem& item) {
        if (auto self = weak.lock()) self->expandAndClickItem(item);
    };
}

void StatusBarController::shelfHasOpened() {
    startShelfAutoHideTimer();
    settleShelfSoon();
}

void StatusBarController::settleShelfSoon() {
    afterDelay(shelfSettleTime, &StatusBarController::shelfHasSettled);
}

void StatusBarController::shelfHasSettled() {
    if (nevoBar->isOpen()) {
        decoyController->update();
    } else {
        spawn(platform.runLoop, DecoyPanelController::rebuild(decoyController));
        autoHideTimer.reset();
    }
}

void StatusBarController::showShelfScreenRecordingPrompt() {
    if (shelfScreenRecordingPrompt && shelfScreenRecordingPrompt->isVisible()) {
        shelfScreenRecordingPrompt->makeKeyAndOrderFront();
        platform.application.activate();
        return;
    }
    auto weak = weak_from_this();
    ShelfScreenRecordingPromptView view{
        [weak] {
            if (auto self = weak.lock()) self->services.screenCapture.openScreenRecordingSettings();
        },
        [weak] {
            if (auto self = weak.lock()) self->restartNevo();
        },
        [weak] {
            if (auto self = weak.lock()) self->shelfScreenRecordingPrompt.reset();
        }};
    WindowConfiguration made;
    made.name = "screen-recording-prompt";
    made.title = text("shelf.screen_recording_prompt.window_title");
    made.size = promptSize;
    shelfScreenRecordingPrompt = platform.surfaceWindows.create(made);
    shelfScreenRecordingPrompt->setContent(view.content());
    shelfScreenRecordingPrompt->makeKeyAndOrderFront();
    platform.application.activate();
}

void StatusBarController::restartNevo() {
    // That it can't be started again is no reason to stay: who asked for this can start it by hand.
    platform.childProcesses.launch(
        "/bin/sh", {"-c", restartScript, "restart-nevo", platform.application.bundlePath()});
    platform.application.terminate();
}

}  // namespace nevo
