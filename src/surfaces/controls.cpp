#include "surfaces/controls.h"

#include <utility>

#include "core/Texts.h"

namespace nevo {

namespace {

Control group(Control::Kind kind, std::vector<Control> children) {
    Control made;
    made.kind = kind;
    made.children = std::move(children);
    return made;
}

Control keyed(Control::Kind kind, const std::string& key) {
    Control made;
    made.kind = kind;
    made.key = key;
    made.title = text(key);
    return made;
}

}  // namespace

Control columnOf(std::vector<Control> children) {
    return group(Control::Kind::column, std::move(children));
}

Control rowOf(std::vector<Control> children) {
    return group(Control::Kind::row, std::move(children));
}

Control sectionOf(const std::string& key, std::vector<Control> children) {
    Control made = keyed(Control::Kind::section, key);
    made.children = std::move(children);
    return made;
}

Control textOf(const std::string& key, Control::TextStyle style) {
    return plainText(key, text(key), style);
}

Control wordsOf(const std::string& titleKey, const std::string& detailKey,
                Control::TextStyle style) {
    Control made = textOf(titleKey, style);
    made.detail = text(detailKey);
    return made;
}

Control symbolOf(const std::string& name, double height) {
    Control made;
    made.kind = Control::Kind::symbol;
    made.symbol = name;
    made.number = height;
    return made;
}

Control plainText(const std::string& key, const std::string& words, Control::TextStyle style) {
    Control made;
    made.kind = Control::Kind::text;
    made.key = key;
    made.title = words;
    made.style = style;
    return made;
}

Control toggleOf(const std::string& key, bool isOn, std::function<void(bool)> setOn) {
    Control made = keyed(Control::Kind::toggle, key);
    made.isOn = isOn;
    made.setOn = std::move(setOn);
    return made;
}

Control buttonOf(const std::string& key, std::function<void()> press) {
    Control made = keyed(Control::Kind::button, key);
    made.press = std::move(press);
    return made;
}

Control sliderOf(const std::string& key, double number, double least, double most, double step,
                 std::string numberText, std::function<void(double)> slide) {
    Control made = keyed(Control::Kind::slider, key);
    made.number = number;
    made.least = least;
    made.most = most;
    made.step = step;
    made.numberText = std::move(numberText);
    made.slide = std::move(slide);
    return made;
}

Control pickerOf(const std::string& key, std::vector<ControlOption> options, std::string selected,
                 std::function<void(const std::string&)> select) {
    Control made = keyed(Control::Kind::picker, key);
    made.options = std::move(options);
    made.selected = std::move(selected);
    made.select = std::move(select);
    return made;
}

ControlOption optionOf(std::string value, const std::string& key) {
    return {std::move(value), text(key), std::nullopt};
}

}  // namespace nevo
