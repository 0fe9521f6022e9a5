#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Color.h"
#include "platform/Image.h"

namespace nevo {

/// A value that can be chosen, and what a person sees of it.
struct ControlOption {
    std::string value;
    std::string title;
    std::optional<Image> image;
};

/// A control of a window, or a group of them: what it shows now, and what happens when a person
/// operates it. Surfaces are trees of these values, made anew after each change; a desktop draws
/// them with widgets of its own and keeps what belongs to the same key (focus, scrolling).
struct Control {
    enum class Kind {
        // Groups.
        column,   ///< one below the other
        row,      ///< side by side
        section,  ///< a column under the heading `title`
        tabs,     ///< one child a tab, its `title` on it; `selected` is the key of the one shown
        card,  ///< a column that can be chosen as a whole, where `press` is set; `isOn` is chosen
        // What is only seen.
        text,    ///< `title` as `style` has it
        symbol,  ///< the system symbol `symbol`, `number` points high
        image,   ///< `image`, as large as it is
        // What can be operated.
        toggle,      ///< on or off: `isOn`, `setOn`
        picker,      ///< one of `options` in a closed list: `selected`, `select`
        radioGroup,  ///< one of `options`, all in sight: `selected`, `select`
        slider,      ///< `number` from `least` to `most` in steps of `step`: `slide`
        colorWell,   ///< `color`, `pickColor`
        button,      ///< `press`
        link,        ///< a button that looks like a piece of text
        orderList,   ///< `options` as rows that can be dragged into another order: `reorder`
        dropZone,    ///< takes a file that is dropped: `takeFile`; a click is `press`
    };
    enum class TextStyle { body, largeTitle, title, note, warning, badge };

    Kind kind = Kind::column;
    /// Names it, alone in its window. That of its text, where it has one.
    std::string key;
    /// What it is called, for the eye and for assistive technology.
    std::string title;
    /// A line under or beside it that says more; empty for none.
    std::string detail;
    TextStyle style = TextStyle::body;
    bool isEnabled = true;
    bool isOn = false;
    /// What Return does in its window.
    bool isDefault = false;
    /// The title is for assistive technology alone.
    bool hidesTitle = false;
    std::string selected;
    std::vector<ControlOption> options;
    double number = 0;
    double least = 0;
    double most = 1;
    double step = 0;
    /// What a slider's number is shown as.
    std::string numberText;
    Color color;
    std::string symbol;
    std::optional<Image> image;
    std::vector<Control> children;

    // Each is called at a turn of the loop of its own or in the middle of an event; it may give its
    // window another content, or destroy the window.
    std::function<void()> press;
    std::function<void(bool)> setOn;
    /// The value of the option.
    std::function<void(const std::string&)> select;
    std::function<void(double)> slide;
    std::function<void(const Color&)> pickColor;
    /// All values in their new order.
    std::function<void(const std::vector<std::string>&)> reorder;
    /// The path of the file.
    std::function<void(const std::string&)> takeFile;
};

}  // namespace nevo
