#pragma once

#include "platform/Prompts.h"
#include "platform/sim/SimTrace.h"

namespace nevo {

/// Prompts that a script answers by their buttons' keys.
class SimPrompts : public Prompts {
public:
    explicit SimPrompts(SimTrace& to) : trace(to), shown(std::make_shared<Shown>()) {}

    std::unique_ptr<Prompt> create(PromptContent content) override;

    /// What the open prompt shows; nullptr when none is open.
    const PromptContent* open() const;
    /// How often the open prompt was brought to the front.
    int timesInFront() const { return shown->timesInFront; }
    /// False when no prompt with such a button is open.
    bool press(const std::string& key);
    /// The window's own close button.
    void close();

private:
    class SimPrompt;
    struct Shown {
        const SimPrompt* which = nullptr;
        PromptContent content;
        int timesInFront = 0;
    };

    SimTrace& trace;
    std::shared_ptr<Shown> shown;
};

/// Programs that this one has started.
class SimChildProcesses : public ChildProcesses {
public:
    explicit SimChildProcesses(SimTrace& to) : trace(to) {}

    bool launch(const std::string& executable, const std::vector<std::string>& arguments) override;

private:
    SimTrace& trace;
};

}  // namespace nevo
