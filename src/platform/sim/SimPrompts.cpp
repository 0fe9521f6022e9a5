#include "platform/sim/SimPrompts.h"

#include <algorithm>

namespace nevo {

class SimPrompts::SimPrompt : public Prompt {
public:
    SimPrompt(SimTrace& to, std::shared_ptr<Shown> place, PromptContent content)
        : trace(to), shown(std::move(place)) {
        *shown = {this, std::move(content), 0};
        std::string keys;
        for (const PromptButton& button : shown->content.buttons) keys += " " + button.key;
        trace.note("prompt", "shown:" + keys);
    }
    ~SimPrompt() override {
        if (!isVisible()) return;
        *shown = {};
        trace.note("prompt", "closed");
    }
    bool isVisible() const override { return shown->which == this; }
    void bringToFront() override { ++shown->timesInFront; }

private:
    SimTrace& trace;
    std::shared_ptr<Shown> shown;
};

std::unique_ptr<Prompt> SimPrompts::create(PromptContent content) {
    return std::make_unique<SimPrompt>(trace, shown, std::move(content));
}

const PromptContent* SimPrompts::open() const {
    return shown->which == nullptr ? nullptr : &shown->content;
}

bool SimPrompts::press(const std::string& key) {
    if (open() == nullptr) return false;
    const auto& buttons = shown->content.buttons;
    auto found = std::find_if(buttons.begin(), buttons.end(),
                              [&](const PromptButton& button) { return button.key == key; });
    if (found == buttons.end()) return false;
    // A copy: the action may close the prompt.
    auto action = found->action;
    action();
    return true;
}

void SimPrompts::close() {
    if (open() == nullptr) return;
    *shown = {};
    trace.note("prompt", "closed");
}

bool SimChildProcesses::launch(const std::string& executable,
                               const std::vector<std::string>& arguments) {
    std::string line = executable;
    for (const std::string& argument : arguments) line += " '" + argument + "'";
    trace.note("run", line);
    return true;
}

}  // namespace nevo
