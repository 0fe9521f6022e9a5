#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "platform/x11/ControlParts.h"
#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

using Kind = Control::Kind;
using TextStyle = Control::TextStyle;

/// In widths of a letter: a longer title of a box goes on in a second line.
constexpr int lettersInLine = 56;
constexpr int mostSteps = 10000;
constexpr int stepsOfContinuous = 100;

QString boxText(const std::string& title, const QWidget& box) {
    QFontMetrics metrics(box.font());
    return inLines(buttonText(title), metrics, metrics.averageCharWidth() * lettersInLine);
}

/// What says more stands below the box's text.
void indent(QVBoxLayout& column, TextLabel& detail, const QWidget& box) {
    const QStyle& style = *box.style();
    int width = style.pixelMetric(QStyle::PM_IndicatorWidth) +
                style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
    detail.setIndent(0);
    detail.setContentsMargins(width, 0, 0, 0);
    column.setContentsMargins(0, 0, 0, 0);
    column.setSpacing(2);
}

class ToggleView : public ControlView {
public:
    explicit ToggleView(const Images& pictures)
        : ControlView(pictures, new QWidget),
          column(new QVBoxLayout(&widget())),
          box(new QCheckBox),
          detail(new TextLabel) {
        column->addWidget(box);
        column->addWidget(detail);
        QObject::connect(box, &QCheckBox::toggled, &context,
                         [this](bool on) { tell(control().setOn, on); });
    }

    bool fillsWidth() const override { return !control().hidesTitle; }
    void appendOperable(std::vector<QWidget*>& list) const override { list.push_back(box); }

protected:
    void present() override {
        describe(*box, control());
        box->setText(control().hidesTitle ? QString() : boxText(control().title, *box));
        box->setChecked(control().isOn);
        detail->showText(control().detail, TextStyle::note);
        indent(*column, *detail, *box);
    }

private:
    QVBoxLayout* column;
    QCheckBox* box;
    TextLabel* detail;
};

class PickerView : public ControlView {
public:
    explicit PickerView(const Images& pictures) : PickerView(pictures, new QComboBox) {}

    bool fillsWidth() const override { return !control().hidesTitle; }
    void appendOperable(std::vector<QWidget*>& list) const override { list.push_back(box); }

protected:
    void present() override {
        describe(*box, control());
        static_cast<Field&>(widget()).showTexts(control());
        const auto& options = control().options;
        int side = QFontMetrics(box->font()).height();
        int selected = -1;
        // Row by row: the list may be open.
        for (int i = 0; i < static_cast<int>(options.size()); ++i) {
            const ControlOption& option = options[static_cast<std::size_t>(i)];
            if (i == box->count()) box->addItem(QString());
            if (box->itemText(i) != plainText(option.title)) {
                box->setItemText(i, plainText(option.title));
            }
            box->setItemIcon(i, option.image ? iconOf(*option.image, *box, side) : QIcon());
            box->setItemData(i, plainText(option.value));
            if (option.value == control().selected) selected = i;
        }
        while (box->count() > static_cast<int>(options.size())) box->removeItem(box->count() - 1);
        if (box->currentIndex() != selected) box->setCurrentIndex(selected);
    }

private:
    PickerView(const Images& pictures, QComboBox* operated)
        : ControlView(pictures, new Field(operated, false)), box(operated) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        leaveWheelToPage(*box);
        // Also of the value that is shown already: it may stand for what nobody has chosen yet.
        QObject::connect(box, &QComboBox::activated, &context, [this](int index) {
            if (index < 0) return;
            tell(control().select, box->itemData(index).toString().toStdString());
        });
    }

    QComboBox* box;
};

class RadioGroupView : public ControlView {
public:
    explicit RadioGroupView(const Images& pictures)
        : ControlView(pictures, new QWidget),
          column(new QVBoxLayout(&widget())),
          title(new TextLabel),
          detail(new TextLabel) {
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(6);
        column->addWidget(title);
        column->addWidget(detail);
        QObject::connect(&group, &QButtonGroup::idToggled, &context, [this](int index, bool on) {
            auto place = static_cast<std::size_t>(index);
            if (!on || place >= control().options.size()) return;
            tell(control().select, std::string(control().options[place].value));
        });
    }

    void appendOperable(std::vector<QWidget*>& list) const override {
        for (QAbstractButton* button : group.buttons()) list.push_back(button);
    }

protected:
    void present() override {
        widget().setAccessibleName(plainText(control().title));
        title->showText(control().hidesTitle ? std::string() : control().title, TextStyle::body);
        detail->showText(control().detail, TextStyle::note);
        matchCount();
        // An exclusive group refuses to have none on.
        group.setExclusive(false);
        for (std::size_t i = 0; i < control().options.size(); ++i) show(i);
        group.setExclusive(true);
        stopAtChosen(group.buttons());
    }

private:
    void matchCount() {
        auto wanted = control().options.size();
        while (buttons.size() < wanted) {
            auto* button = new QRadioButton(&widget());
            column->insertWidget(static_cast<int>(buttons.size()) + 1, button);
            button->show();
            group.addButton(button, static_cast<int>(buttons.size()));
            buttons.push_back(button);
        }
        while (buttons.size() > wanted) {
            group.removeButton(buttons.back());
            buttons.back()->hide();
            buttons.back()->deleteLater();
            buttons.pop_back();
        }
    }

    void show(std::size_t index) {
        const ControlOption& option = control().options[index];
        QRadioButton& button = *buttons[index];
        button.setObjectName(plainText(control().key + "/" + option.value));
        button.setText(boxText(option.title, button));
        button.setAccessibleName(plainText(option.title));
        int side = QFontMetrics(button.font()).height();
        button.setIcon(option.image ? iconOf(*option.image, button, side) : QIcon());
        button.setChecked(option.value == control().selected);
    }

    QVBoxLayout* column;
    QButtonGroup group;
    std::vector<QRadioButton*> buttons;
    TextLabel* title;
    TextLabel* detail;
};

/// Moves in whole steps from `least`; a control without a step in hundredths of its range.
class SliderView : public ControlView {
public:
    explicit SliderView(const Images& pictures)
        : SliderView(pictures, new QSlider(Qt::Horizontal), new QLabel) {}

    void appendOperable(std::vector<QWidget*>& list) const override { list.push_back(slider); }

protected:
    void present() override {
        describe(*slider, control());
        static_cast<Field&>(widget()).showTexts(control());
        // What the slider itself tells is the number of its step.
        slider->setAccessibleDescription(
            plainText(control().numberText + " " + control().detail).trimmed());
        number->setText(plainText(control().numberText));
        number->setVisible(!control().numberText.empty());
        // A hand that holds it has the last word.
        if (slider->isSliderDown()) return;
        slider->setRange(0, steps());
        slider->setPageStep(std::max(1, steps() / 10));
        double way = span() > 0 ? (control().number - control().least) / span() : 0;
        if (!(way >= 0)) way = 0;
        slider->setValue(static_cast<int>(std::lround(std::min(way, 1.0) * steps())));
    }

private:
    SliderView(const Images& pictures, QSlider* operated, QLabel* numberLabel)
        : ControlView(pictures, new Field(operated, true, numberLabel)),
          slider(operated),
          number(numberLabel) {
        slider->setMinimumWidth(120);
        number->setTextFormat(Qt::PlainText);
        leaveWheelToPage(*slider);
        QObject::connect(slider, &QSlider::valueChanged, &context,
                         [this](int value) { tell(control().slide, numberAt(value)); });
        QObject::connect(slider, &QSlider::sliderReleased, &context, [this] { refresh(); });
    }

    double span() const {
        double range = control().most - control().least;
        return std::isfinite(range) && range > 0 ? range : 0;
    }

    int steps() const {
        if (!(control().step > 0)) return stepsOfContinuous;
        return static_cast<int>(
            std::lround(std::clamp<double>(span() / control().step, 1, mostSteps)));
    }

    double numberAt(int value) const {
        if (value >= steps()) return control().least + span();
        double step = span() / control().step > mostSteps || !(control().step > 0)
                          ? span() / steps()
                          : control().step;
        return control().least + value * step;
    }

    QSlider* slider;
    QLabel* number;
};

}  // namespace

std::unique_ptr<ControlView> makeChoiceView(const Control& control, const Images& images) {
    switch (control.kind) {
        case Kind::toggle:
            return std::make_unique<ToggleView>(images);
        case Kind::picker:
            return std::make_unique<PickerView>(images);
        case Kind::radioGroup:
            return std::make_unique<RadioGroupView>(images);
        case Kind::orderList:
            return makeOrderListView(images);
        default:
            return std::make_unique<SliderView>(images);
    }
}

}  // namespace nevo
