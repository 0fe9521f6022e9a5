#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "platform/Controls.h"

namespace nevo {

// Makers of the controls that surfaces are built of. A `key` names the control and its text.

Control columnOf(std::vector<Control> children);
Control rowOf(std::vector<Control> children);
Control sectionOf(const std::string& key, std::vector<Control> children);
Control textOf(const std::string& key, Control::TextStyle style = Control::TextStyle::body);
/// A text with one in smaller print below it.
Control wordsOf(const std::string& titleKey, const std::string& detailKey,
                Control::TextStyle style = Control::TextStyle::body);
/// A system symbol, `height` points high.
Control symbolOf(const std::string& name, double height);
/// A text that isn't in the table: a name, a value, an error.
Control plainText(const std::string& key, const std::string& words,
                  Control::TextStyle style = Control::TextStyle::body);
Control toggleOf(const std::string& key, bool isOn, std::function<void(bool)> setOn);
Control buttonOf(const std::string& key, std::function<void()> press);
Control sliderOf(const std::string& key, double number, double least, double most, double step,
                 std::string numberText, std::function<void(double)> slide);
Control pickerOf(const std::string& key, std::vector<ControlOption> options, std::string selected,
                 std::function<void(const std::string&)> select);
/// An option whose title is the text of `key`.
ControlOption optionOf(std::string value, const std::string& key);

}  // namespace nevo
