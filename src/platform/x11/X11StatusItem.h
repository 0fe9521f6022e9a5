#pragma once

#include <QPainter>
#include <QRect>
#include <memory>

#include "platform/x11/X11StatusBar.h"

namespace nevo {

/// One of our items: the button is drawn here and its clicks come here; its place is the bar's.
class X11StatusItem : public StatusItem, private StatusItemButton {
public:
    X11StatusItem(const std::shared_ptr<StatusBarContext>& shared, double length);
    ~X11StatusItem() override;

    void setLength(double length) override;
    double length() const override { return itemLength; }
    void setVisible(bool visible) override;
    bool isVisible() const override { return isShown; }
    void setAutosaveName(const std::string& name) override;
    StatusItemButton* button() override { return this; }

    void dock() { window.dock(); }
    /// An event of the connection; true when it was for this item.
    bool handle(const xcb_generic_event_t& event);

private:
    void setImage(std::optional<Image> image) override;
    std::optional<Image> image() const override { return picture; }
    void setTitle(const std::string& title) override;
    void setImagePosition(int position) override;
    void setImageScaling(int) override {}
    void setEnabled(bool enabled) override;
    bool isEnabled() const override { return takesClicks; }
    void setHighlighted(bool highlighted) override;
    void setHidden(bool hidden) override;
    bool isHidden() const override { return isBlank; }
    void setAlpha(double alpha) override;
    double alpha() const override { return opacity; }
    void setAction(std::function<void()> newAction) override { action = std::move(newAction); }
    std::optional<WindowNumber> windowNumber() const override;
    Rect bounds() const override;
    std::optional<Rect> screenFrame() const override;
    std::optional<Rect> windowScreenFrame() const override;

    /// Pixels to a point.
    double scale() const;
    /// Pixels.
    int contentWidth() const;
    void updateLength();
    void changed();
    void paint();
    void paintContent(QPainter& painter, QRect area) const;
    void handleButton(const xcb_button_press_event_t& event, bool isPress);
    bool isSwallowed(EventType type, const xcb_button_press_event_t& event) const;

    std::weak_ptr<StatusBarContext> context;
    TrayWindow window;
    double itemLength;
    bool isShown = true;
    std::optional<Image> picture;
    std::string text;
    bool imageOnly = false;
    bool takesClicks = true;
    bool isLit = false;
    bool isBlank = false;
    double opacity = 1;
    bool pressedInside = false;
    bool paintScheduled = false;
    std::function<void()> action;
    /// Dies with the item: what is still queued for it sees that.
    std::shared_ptr<int> life = std::make_shared<int>(0);
};

}  // namespace nevo
