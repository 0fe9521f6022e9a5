#pragma once

#include <map>

#include "platform/StatusBar.h"
#include "platform/sim/SimBar.h"
#include "platform/sim/SimFaults.h"

namespace nevo {

/// Who the program is to the rest of the desktop.
struct SimProgram {
    std::string bundleIdentifier = "com.nevoapp.Nevo";
    std::string name = "Nevo";
    ProcessId pid = 100;
};

class SimStatusItem;

/// The program's own status items, in the same row as everybody's.
class SimStatusBar : public StatusBar {
public:
    SimStatusBar(SimBar& row, SimWindows& allWindows, SimScreens& allScreens, SimFaults& scripted,
                 SimProgram& self);
    ~SimStatusBar() override;

    std::unique_ptr<StatusItem> statusItem(double length) override;
    double thickness() const override { return screens.barHeight(); }
    std::optional<double> systemAreaLeft() const override { return bar.systemAreaLeft(); }

    /// The living item with that autosave name, or nullptr.
    SimStatusItem* find(const std::string& name);
    /// A left click on the item of that window: its action runs, if it takes clicks.
    void click(WindowNumber window);
    std::size_t itemCount() const { return items.size(); }

private:
    friend class SimStatusItem;
    friend class SimStatusItemButton;

    SimBar& bar;
    SimWindows& windows;
    SimScreens& screens;
    SimFaults& faults;
    SimProgram& program;
    std::map<WindowNumber, SimStatusItem*> items;
};

/// The looks are kept for tests to read.
class SimStatusItemButton : public StatusItemButton {
public:
    explicit SimStatusItemButton(SimStatusItem& of) : item(of) {}

    void setImage(std::optional<Image> image) override;
    std::optional<Image> image() const override { return shownImage; }
    void setTitle(const std::string& title) override;
    void setImagePosition(int position) override { imagePosition = position; }
    void setImageScaling(int scaling) override { imageScaling = scaling; }
    void setEnabled(bool value) override { enabled = value; }
    bool isEnabled() const override { return enabled; }
    void setHighlighted(bool value) override { highlighted = value; }
    void setHidden(bool value) override { hidden = value; }
    bool isHidden() const override { return hidden; }
    void setAlpha(double value) override { opacity = value; }
    double alpha() const override { return opacity; }
    void setAction(std::function<void()> call) override { action = std::move(call); }

    std::optional<WindowNumber> windowNumber() const override;
    Rect bounds() const override;
    std::optional<Rect> screenFrame() const override;
    std::optional<Rect> windowScreenFrame() const override;

    /// Width that the content asks for, points.
    double contentWidth() const;
    void click() const;

    int imagePosition = 0;
    int imageScaling = 0;
    bool highlighted = false;
    std::string shownTitle;

private:
    SimStatusItem& item;
    std::optional<Image> shownImage;
    bool enabled = true;
    bool hidden = false;
    double opacity = 1;
    std::function<void()> action;
};

class SimStatusItem : public StatusItem {
public:
    SimStatusItem(SimStatusBar& of, double length);
    ~SimStatusItem() override;

    void setLength(double length) override;
    double length() const override { return askedLength; }
    void setVisible(bool value) override;
    bool isVisible() const override { return visible; }
    void setAutosaveName(const std::string& name) override;
    StatusItemButton* button() override;

    const std::string& autosaveName() const { return name; }
    SimStatusItemButton& shownButton() { return face; }
    WindowNumber window() const { return number; }

private:
    friend class SimStatusItemButton;
    void applyLength();

    SimStatusBar& owner;
    SimStatusItemButton face;
    WindowNumber number = 0;
    double askedLength;
    bool visible = true;
    std::string name;
};

}  // namespace nevo
