#include "scenario/ScenarioRun.h"

#include <fmt/format.h>

#include <array>

#include "entry/NevoApp.h"

namespace nevo {

namespace {
struct OwnItem {
    const char* shortName;
    const char* autosaveName;
};
constexpr std::array<OwnItem, 3> ownItems{{{"toggle", "Nevo_Toggle"},
                                           {"divider", "Nevo_Separator"},
                                           {"always-hidden-divider", "Nevo_AlwaysHiddenDivider"}}};

std::string autosaveName(const std::string& name) {
    for (const OwnItem& own : ownItems) {
        if (name == own.shortName) return own.autosaveName;
    }
    return name;
}

/// What a person takes to read an alert, seconds.
constexpr double readingTime = 0.5;
}  // namespace

ScenarioRun::ScenarioRun(const Scenario& of)
    : ScenarioRun(of.name, [&of, next = std::size_t{0}]() mutable {
          return next < of.lines.size() ? std::optional(of.lines[next++]) : std::nullopt;
      }) {}

ScenarioRun::ScenarioRun(std::string called, LineSource from)
    : title(std::move(called)), nextLine(std::move(from)) {
    // Most stories are about later days.
    world.defaults.standard().set(onboardingCompletedKey, true);
    world.menus.whileOpen = [this] { runLines(true); };
    world.alerts.whileOpen = [this] { world.loop.runFor(readingTime); };
}

ScenarioRun::~ScenarioRun() {
    world.application.die();
    world.reap();
}

Outcome ScenarioRun::run() {
    runLines(false);
    return result;
}

void ScenarioRun::runLines(bool nested) {
    depth += nested ? 1 : 0;
    auto goesOn = [&] {
        bool wanted =
            !nested || (world.menus.openMenu() != nullptr && world.application.isRunning());
        return result && wanted;
    };
    while (goesOn()) {
        auto line = nextLine();
        if (!line) break;
        runOne(*line);
        // A program that has ended is still on the stack below an open menu.
        if (!nested) world.reap();
    }
    depth -= nested ? 1 : 0;
}

void ScenarioRun::runOne(const Scenario::Line& line) {
    currentLine = line.number;
    world.trace.note(">", line.text);
    fail(line.number, line.step(*this));
    world.loop.runReady();
}

void ScenarioRun::fail(int line, Outcome outcome) {
    if (outcome || !result) return;
    if (passesOverNonsense && outcome.kind == Outcome::Kind::unreadable) return;
    outcome.message = fmt::format("{}:{}: {}", title, line, outcome.message);
    result = std::move(outcome);
}

void ScenarioRun::later(double seconds, Step step) {
    world.loop.desktopAfter(
        seconds, [this, step = std::move(step), line = currentLine] { fail(line, step(*this)); });
}

bool ScenarioRun::startNevo() {
    if (isNested()) return false;
    return world.start([this](Platform platform) {
        auto made = std::make_shared<NevoApp>(platform);
        app = made;
        return made;
    });
}

bool ScenarioRun::toggle() {
    auto held = nevo();
    if (!held || held->delegate().controller() == nullptr) return false;
    // Like the hot key's handler: at a later turn, for what is still there then.
    world.loop.post([weak = app] {
        if (auto still = weak.lock()) still->delegate().controller()->toggle(true);
    });
    return true;
}

std::shared_ptr<NevoApp> ScenarioRun::nevo() const {
    return world.application.isRunning() ? app.lock() : nullptr;
}

AppState* ScenarioRun::state() {
    auto held = nevo();
    return held ? &held->delegate().state() : nullptr;
}

OnboardingCoordinator* ScenarioRun::firstRun() {
    auto held = nevo();
    return held ? &held->delegate().onboardingCoordinator() : nullptr;
}

WindowNumber ScenarioRun::window(const std::string& name, std::string& message) const {
    if (const SimBar::Item* item = world.bar.findLabel(autosaveName(name))) return item->window;
    auto plain = plainWindows.find(name);
    if (plain != plainWindows.end()) return plain->second;
    std::vector<std::string> known;
    for (WindowNumber number : world.bar.order()) {
        known.push_back(shortName(world.bar.find(number)->label));
    }
    for (const auto& [handle, number] : plainWindows) known.push_back(handle);
    message = fmt::format("there is no item or window \"{}\" now; there are: {}", name,
                          known.empty() ? "none" : listed(known));
    return 0;
}

std::string ScenarioRun::shortName(const std::string& label) const {
    for (const OwnItem& own : ownItems) {
        if (label == own.autosaveName) return own.shortName;
    }
    return label;
}

SimStatusItem* ScenarioRun::ownItem(const std::string& name) {
    return world.statusBar.find(autosaveName(name));
}

}  // namespace nevo
