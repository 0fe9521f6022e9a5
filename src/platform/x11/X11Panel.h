#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/x11/Compositor.h"
#include "platform/x11/LocalMonitors.h"
#include "platform/x11/PanelKeys.h"
#include "platform/x11/PanelMotion.h"
#include "platform/x11/PanelWindow.h"
#include "platform/x11/WindowNumbers.h"

namespace nevo {

class X11Panel;

/// What the panels share.
struct PanelContext {
    XServer& server;
    Screens& screens;
    LocalMonitors& monitors;
    WindowNumbers& numbers;
    Compositor& compositor;
    PanelKeys& keys;
    std::vector<X11Panel*> panels;
};

/// A panel is a window of Qt's. Of its configuration count here: the frame, the background, the
/// shadow, whether it ignores the mouse, and whether its level is above the bar's; it can't be
/// moved by its background, and is there in every workspace. Without a compositor it is opaque or
/// invisible, nothing between.
class X11Panel : public Panel {
public:
    X11Panel(const std::shared_ptr<PanelContext>& shared, const PanelConfiguration& configuration);
    ~X11Panel() override;
    X11Panel(const X11Panel&) = delete;
    X11Panel& operator=(const X11Panel&) = delete;

    Rect frame() const override { return currentFrame; }
    void setFrame(Rect frame) override;
    std::optional<Screen> screen() const override;
    void setViews(std::vector<PanelView> all) override { views.replace(std::move(all)); }
    void setView(const PanelView& view, std::optional<Animation> animation) override;
    void bringViewToFront(const std::string& key) override { views.bringToFront(key); }
    void setAlpha(double alpha) override;
    void animateAlpha(double alpha, Animation animation, std::function<void()> done) override;
    void orderFront() override;
    bool makeKey() override;
    void resignKey() override { keys.reset(); }
    void orderOut() override;
    bool isVisible() const override { return window->isVisible(); }

    /// A compositor has come or gone.
    void setComposited(bool composited);

private:
    QImage paint(QSize size) const;
    void place();
    double scale() const { return context->server.coordinates.scale; }
    void showAlpha();
    void tellLater(const std::function<void()>& done);
    double alphaNow() const;
    void hear(EventType type, Point inPanel, ModifierFlags modifiers);
    bool isSwallowed(EventType type, Point inPanel, ModifierFlags modifiers) const;
    void deliver(EventType type, Point inPanel, ModifierFlags modifiers);
    void deliverWheel(Point notches, Point inPanel, ModifierFlags modifiers);
    std::string viewAt(Point inPanel) const;

    std::shared_ptr<PanelContext> context;
    Rect currentFrame;
    Color background;
    bool isComposited;
    double alphaGoal = 1;
    /// Those that may still have to tell their end, and the one among them that is followed.
    std::vector<std::unique_ptr<QVariantAnimation>> fades;
    const QVariantAnimation* fade = nullptr;
    /// Where each button went down.
    std::string leftPressed;
    std::string rightPressed;
    std::string otherPressed;
    Registration keys;
    PanelWindowOwner window;
    MovingViews views;
    /// Dies with the panel: what runs later sees that.
    std::shared_ptr<int> life = std::make_shared<int>(0);
};

class X11Panels : public Panels {
public:
    X11Panels(XServer& x, Screens& screens, LocalMonitors& monitors, WindowNumbers& numbers,
              Compositor& compositor, PanelKeys& keys);
    ~X11Panels() override;

    std::unique_ptr<Panel> create(const PanelConfiguration& configuration) override;

private:
    std::shared_ptr<PanelContext> context;
};

}  // namespace nevo
