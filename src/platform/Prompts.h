#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace nevo {

/// A line of text in a prompt, by the key of its text.
struct PromptText {
    std::string key;
    std::string text;
    double size = 0;
};

struct PromptButton {
    std::string key;
    std::string title;
    std::function<void()> action;
};

/// What a prompt shows, from top to bottom: a system symbol, texts, a row of buttons.
struct PromptContent {
    std::string windowTitle;
    Size size;
    std::string symbol;
    double symbolSize = 0;
    std::vector<PromptText> texts;
    std::vector<PromptButton> buttons;
};

/// A small window that asks the user for something and leaves the program running (`NSWindow` with
/// a hosted view, of a fixed size and in the middle of the screen). The frame around it is as the
/// desktop's windows have it. Its close button closes it, and it is gone from the screen when it is
/// destroyed.
class Prompt {
public:
    virtual ~Prompt() = default;
    virtual bool isVisible() const = 0;
    /// `makeKeyAndOrderFront:`.
    virtual void bringToFront() = 0;
};

class Prompts {
public:
    virtual ~Prompts() = default;
    /// Never nullptr. A button's action may destroy the prompt.
    virtual std::unique_ptr<Prompt> create(PromptContent content) = 0;
};

/// Child processes (`NSTask`).
class ChildProcesses {
public:
    virtual ~ChildProcesses() = default;
    /// Starts a program that outlives this one (`launchAndReturnError:`). False when it can't be
    /// started.
    virtual bool launch(const std::string& executable,
                        const std::vector<std::string>& arguments) = 0;
};

}  // namespace nevo
