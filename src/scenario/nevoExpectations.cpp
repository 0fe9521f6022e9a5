#include <fmt/format.h>

#include <algorithm>

#include "platform/Task.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {

/// The log lines that count now.
std::vector<std::string> logLines(ScenarioRun& run) {
    const auto& all = run.desktop().log.lines();
    return {all.begin() + static_cast<std::ptrdiff_t>(run.logStart), all.end()};
}

bool contains(const std::string& line, const std::string& text) {
    return line.find(text) != std::string::npos;
}

/// The last few lines, for the message of an expectation that isn't met.
std::string logTail(const std::vector<std::string>& lines) {
    constexpr std::size_t shown = 8;
    if (lines.empty()) return "the log is empty";
    std::string text = lines.size() > shown ? "the log ends" : "the log is";
    for (std::size_t i = lines.size() > shown ? lines.size() - shown : 0; i < lines.size(); ++i) {
        text += "\n    " + lines[i];
    }
    return text;
}

Step readLog(LineReader& reader) {
    std::string text = reader.word("TEXT");
    return [text](ScenarioRun& run) {
        auto lines = logLines(run);
        bool found = std::any_of(lines.begin(), lines.end(),
                                 [&](const std::string& line) { return contains(line, text); });
        if (found) return Outcome{};
        return Outcome::failed(
            fmt::format("expected a log line with \"{}\", actual: {}", text, logTail(lines)));
    };
}

Step readNoLog(LineReader& reader) {
    std::string text = reader.word("TEXT");
    return [text](ScenarioRun& run) {
        for (const std::string& line : logLines(run)) {
            if (!contains(line, text)) continue;
            return Outcome::failed(
                fmt::format("expected no log line with \"{}\", actual: {}", text, line));
        }
        return Outcome{};
    };
}

Step readLogCount(LineReader& reader) {
    int expected = reader.whole("COUNT");
    std::string text = reader.word("TEXT");
    return [=](ScenarioRun& run) {
        auto lines = logLines(run);
        auto actual = std::count_if(lines.begin(), lines.end(),
                                    [&](const std::string& line) { return contains(line, text); });
        return Outcome::compare("log lines with \"" + text + "\"", std::to_string(expected),
                                std::to_string(actual));
    };
}

Step readPrinted(LineReader& reader) {
    std::string text = reader.word("TEXT");
    return [text](ScenarioRun& run) {
        const auto& lines = run.desktop().log.printed();
        bool found = std::any_of(lines.begin(), lines.end(),
                                 [&](const std::string& line) { return contains(line, text); });
        if (found) return Outcome{};
        return Outcome::failed(
            fmt::format("expected \"{}\" on standard output, actual: nothing of it", text));
    };
}

Step readLogOrder(LineReader& reader) {
    std::vector<std::string> texts = reader.rest("TEXT", 1);
    return [texts](ScenarioRun& run) {
        auto lines = logLines(run);
        auto at = lines.begin();
        for (const std::string& text : texts) {
            at = std::find_if(at, lines.end(),
                              [&](const std::string& line) { return contains(line, text); });
            if (at == lines.end()) {
                return Outcome::failed(
                    fmt::format("expected log lines in order, actual: \"{}\" isn't there or comes "
                                "too early; {}",
                                text, logTail(lines)));
            }
            ++at;
        }
        return Outcome{};
    };
}

Step readLength(LineReader& reader) {
    std::string name = reader.word("ITEM");
    double expected = reader.number("POINTS");
    return withOwnItem(name, [=](ScenarioRun&, SimStatusItem& item) {
        return Outcome::compare("length of " + name, fmt::format("{}", expected),
                                fmt::format("{}", item.length()));
    });
}

Step readState(LineReader& reader) {
    std::string expected = reader.choice("the state", {"expanded", "collapsed"});
    return withOwnItem("divider", [=](ScenarioRun&, SimStatusItem& item) {
        bool collapsed = item.length() >= MenuBarRow::collapsedLength;
        return Outcome::compare("the state", expected, collapsed ? "collapsed" : "expanded");
    });
}

Step readButton(LineReader& reader) {
    std::string name = reader.word("ITEM");
    std::string what =
        reader.choice("what of it", {"image", "title", "alpha", "enabled", "hidden", "visible"});
    std::string expected = reader.word("VALUE");
    return withOwnItem(name, [=](ScenarioRun&, SimStatusItem& item) {
        SimStatusItemButton& button = item.shownButton();
        std::string actual;
        auto image = button.image();
        if (what == "image") actual = image ? image->source : "none";
        if (what == "title") actual = button.shownTitle;
        if (what == "alpha") actual = fmt::format("{}", button.alpha());
        if (what == "enabled") actual = yesOrNo(button.isEnabled());
        if (what == "hidden") actual = yesOrNo(button.isHidden());
        if (what == "visible") actual = yesOrNo(item.isVisible());
        return Outcome::compare(what + " of " + name, expected, actual);
    });
}

Step readNevo(LineReader& reader) {
    std::string expected = reader.choice("the state", {"running", "ended"});
    return [expected](ScenarioRun& run) {
        bool runs = run.desktop().application.isRunning();
        return Outcome::compare("Nevo", expected, runs ? "running" : "ended");
    };
}

Step readMenu(LineReader& reader) {
    std::string expected = reader.choice("the state", {"shown", "closed"});
    std::vector<std::string> keys = reader.rest("KEY", 0);
    return [=](ScenarioRun& run) {
        const auto* rows = run.desktop().menus.openMenu();
        auto state = Outcome::compare("the menu", expected, rows != nullptr ? "shown" : "closed");
        if (!state || keys.empty() || rows == nullptr) return state;
        std::string wanted;
        std::string actual;
        for (const std::string& key : keys) wanted += key + " ";
        for (const MenuItem& row : *rows) actual += (row.isSeparator() ? "-" : row.key) + " ";
        return Outcome::compare("the menu's rows", wanted, actual);
    };
}

Step readPopover(LineReader& reader) {
    std::string expected = reader.choice("the state", {"shown", "closed"});
    std::string key;
    if (!reader.atEnd()) key = reader.word("KEY");
    return [=](ScenarioRun& run) {
        const Control* content = run.desktop().popovers.shown();
        auto state = Outcome::compare("the popover", expected, content ? "shown" : "closed");
        if (!state || key.empty() || content == nullptr) return state;
        std::string actual = content->children.empty() ? "none" : content->children.front().key;
        return Outcome::compare("the popover's status line", key, actual);
    };
}

Step readUrl(LineReader& reader) {
    std::string expected = reader.word("URL");
    return [expected](ScenarioRun& run) {
        const auto& urls = run.desktop().workspace.openedUrls();
        return Outcome::compare("the last opened URL", expected,
                                urls.empty() ? "none" : urls.back());
    };
}

Step readPanel(LineReader& reader) {
    std::string expected = reader.choice("the state", {"shown", "closed"});
    return [expected](ScenarioRun& run) {
        bool shown = run.desktop().application.isAboutPanelShown();
        return Outcome::compare("the about panel", expected, shown ? "shown" : "closed");
    };
}

Step readCount(LineReader& reader) {
    std::string what = reader.choice("what", {"tasks", "timers", "monitors", "observers",
                                              "own-items", "recording-prompts", "trust-prompts"});
    int expected = reader.whole("COUNT");
    return [=](ScenarioRun& run) {
        SimDesktop& desktop = run.desktop();
        std::size_t actual = 0;
        if (what == "tasks") actual = desktop.loop.tasks().liveCount();
        if (what == "timers") actual = desktop.loop.programTimerCount();
        if (what == "monitors") actual = desktop.events.monitorCount();
        if (what == "own-items") actual = desktop.statusBar.itemCount();
        if (what == "trust-prompts")
            actual = static_cast<std::size_t>(desktop.accessibility.promptCount());
        if (what == "recording-prompts") {
            actual = static_cast<std::size_t>(desktop.screenCapture.promptCount());
        }
        if (what == "observers") {
            actual = desktop.notifications.observerCount() +
                     desktop.workspaceNotifications.observerCount();
        }
        return Outcome::compare(what, std::to_string(expected), std::to_string(actual));
    };
}

Step readFirstRunStep(LineReader& reader) {
    const std::vector<std::string> steps{"welcome", "features", "modeSelect", "permissions"};
    std::vector<std::string> choices = steps;
    choices.emplace_back("closed");
    std::string expected = reader.choice("the step", choices);
    return [=](ScenarioRun& run) {
        OnboardingCoordinator* flow = run.firstRun();
        auto open = flow != nullptr ? flow->openStep() : std::nullopt;
        std::string actual = open ? steps[static_cast<std::size_t>(*open)] : "closed";
        return Outcome::compare("the first-run flow", expected, actual);
    };
}

}  // namespace

std::vector<Command> nevoExpectations() {
    return {
        {"expect nevo", "running|ended", "Whether Nevo's process lives.", readNevo},
        {"expect state", "expanded|collapsed",
         "By the length of the divider: 9999 or more is collapsed.", readState},
        {"expect length", "ITEM POINTS",
         "The length that Nevo asked for its item; -1 is by content.", readLength},
        {"expect button", "ITEM image|title|alpha|enabled|hidden|visible VALUE",
         "What Nevo's item looks like. An image is named by its source; enabled, hidden and "
         "visible "
         "are yes or no.",
         readButton},
        {"expect log", "TEXT", "A log line has TEXT in it.", readLog},
        {"expect no-log", "TEXT", "No log line has TEXT in it.", readNoLog},
        {"expect log-count", "COUNT TEXT", "So many log lines have TEXT in them.", readLogCount},
        {"expect printed", "TEXT", "A line of standard output has TEXT in it.", readPrinted},
        {"expect log-order", "TEXT...", "Log lines with these texts come in this order.",
         readLogOrder},
        {"expect menu", "shown|closed [KEY]...",
         "Whether a menu is open, and its rows; - is a line.", readMenu},
        {"expect popover", "shown|closed [KEY]",
         "Whether the popover is shown, and the key of its status line.", readPopover},
        {"expect about", "shown|closed", "Whether the about panel is shown.", readPanel},
        {"expect first-run", "welcome|features|modeSelect|permissions|closed",
         "The step that the first-run flow is open at.", readFirstRunStep},
        {"expect url", "URL|none", "The URL that Nevo opened last.", readUrl},
        {"expect count",
         "tasks|timers|monitors|observers|own-items|recording-prompts|trust-prompts COUNT",
         "How many of these Nevo has.", readCount},
    };
}

}  // namespace nevo
