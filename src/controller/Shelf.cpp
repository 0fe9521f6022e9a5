#include <fmt/format.h>

#include "controller/StatusBarController.h"
#include "core/Texts.h"
#include "core/debugLog.h"

namespace nevo {

namespace {

constexpr Size promptSize{440, 420};
constexpr double promptSymbolSize = 88;
/// A moment after this process has gone.
constexpr const char* restartScript = "sleep 0.7; open \"$1\"";

PromptText line(const std::string& name, double size) {
    std::string key = "shelf.screen_recording_prompt." + name;
    return {key, text(key), size};
}

PromptButton button(const std::string& name, std::function<void()> action) {
    std::string key = "shelf.screen_recording_prompt." + name;
    return {key, text(key), std::move(action)};
}

}  // namespace

ShelfController& StatusBarController::shelf() {
    if (!shelfController) {
        shelfController = ShelfController::create(platform, appState, nevoBar, sectionManager,
                                                  services.scanner, services.mover);
        // However the bar has closed, the decoys take its place.
        shelfController->onClosed = [weak = weak_from_this()] {
            auto self = weak.lock();
            if (self)
                spawn(self->platform.runLoop, DecoyPanelController::rebuild(self->decoyController));
        };
    }
    return *shelfController;
}

void StatusBarController::bindBarForPushMode() {
    nevoBar->onItemRightClicked = nullptr;
    nevoBar->onItemClicked = [weak = weak_from_this()](const BarItem& item) {
        if (auto self = weak.lock()) self->expandAndClickItem(item);
    };
}

void StatusBarController::shelfHasOpened() {
    decoyController->hide();
    decoyController->stopRefreshing();
    startShelfAutoHideTimer();
}

void StatusBarController::shelfHasClosed() {
    spawn(platform.runLoop, DecoyPanelController::rebuild(decoyController));
    autoHideTimer.reset();
}

void StatusBarController::showShelfScreenRecordingPrompt() {
    if (shelfScreenRecordingPrompt && shelfScreenRecordingPrompt->isVisible()) {
        shelfScreenRecordingPrompt->bringToFront();
        platform.application.activate();
        return;
    }
    auto weak = weak_from_this();
    PromptContent content;
    content.windowTitle = text("shelf.screen_recording_prompt.window_title");
    content.size = promptSize;
    content.symbol = "rectangle.on.rectangle.badge.gearshape";
    content.symbolSize = promptSymbolSize;
    content.texts = {line("title", 24), line("body", 14), line("note", 12)};
    content.buttons = {button("open_settings",
                              [weak] {
                                  if (auto self = weak.lock())
                                      self->services.screenCapture.openScreenRecordingSettings();
                              }),
                       button("not_now",
                              [weak] {
                                  if (auto self = weak.lock())
                                      self->shelfScreenRecordingPrompt.reset();
                              }),
                       button("restart", [weak] {
                           if (auto self = weak.lock()) self->restartNevo();
                       })};
    shelfScreenRecordingPrompt = platform.prompts.create(std::move(content));
    shelfScreenRecordingPrompt->bringToFront();
    platform.application.activate();
}

void StatusBarController::restartNevo() {
    // That it can't be started again is no reason to stay.
    platform.childProcesses.launch(
        "/bin/sh", {"-c", restartScript, "restart-nevo", platform.application.bundlePath()});
    platform.application.terminate();
}

}  // namespace nevo
