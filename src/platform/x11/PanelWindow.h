#pragma once

#include <QHelpEvent>
#include <QImage>
#include <QWidget>
#include <functional>
#include <memory>

#include "platform/Events.h"
#include "platform/x11/QtWindow.h"
#include "platform/x11/XServer.h"

namespace nevo {

/// The window of a panel: shows a picture at a place in root pixels, whatever scale Qt has been
/// given, and tells what the mouse does in it. It takes no focus, at no time.
///
/// With a compositor it is translucent and may have a shadow. Without one what is translucent of
/// the picture becomes opaque or is cut off, and so is the whole at opacity 0.
class PanelWindow : public QWidget {
public:
    struct Nature {
        /// Above the bar: the window manager has no say in its place, and it isn't a client.
        bool isAboveBar = false;
        bool hasShadow = false;
        bool takesMouse = true;
    };
    struct ToolTip {
        std::string text;
        /// Of the view that has it: pixels from the picture's bottom left.
        Rect frame;
    };
    PanelWindow(XServer& x, const Nature& asked, bool composited);

    /// Gives the picture of that size, in pixels.
    std::function<QImage(QSize)> draw;
    /// Gives the shape that throws the shadow, as large as the picture.
    std::function<QImage(QSize)> drawShape;
    /// `place` in pixels from the picture's bottom left.
    std::function<void(EventType type, Point place, ModifierFlags modifiers)> onMouse;
    /// The wheel has turned by so many whole notches, up and to the left above 0.
    std::function<void(Point notches, Point place, ModifierFlags modifiers)> onWheel;
    std::function<ToolTip(Point place)> toolTipAt;

    /// Root pixels, of the picture alone.
    void setPlace(const QRect& root);
    void setOpacity(double value);
    /// Whether the mouse gets what is below, though the panel would take it.
    void letMouseThrough(bool lets);
    void setComposited(bool composited);
    /// The picture has changed.
    void redraw();
    void showInFront();

    /// Runs `work`, and destroys the window after it if it has been let go meanwhile.
    void whileAlive(const std::function<void()>& work);

    /// Lets a window go: off the screen and silent at once; destroyed when it isn't in the middle
    /// of handling an event.
    struct Release {
        void operator()(PanelWindow* window) const;
    };

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// A second press is one, too.
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void arrange();
    void render();
    QImage onShadow(const QImage& picture);
    void limit();
    void introduce();
    int room() const;
    QPoint pictureCorner() const { return corner + QPoint(room(), room()); }
    Point inPicture(QPointF position) const;
    QRect inQt(const Rect& frame) const;
    void showToolTip(const QHelpEvent& help);
    void tell(EventType type, const QMouseEvent& event);

    XServer& server;
    Nature nature;
    bool isComposited;
    double opacity = 1;
    QRect rootPlace;
    /// Pixels to a unit of Qt's.
    double scale = 1;
    /// Of what is shown, the shadow included: pixels from the window's corner.
    QPoint corner;
    QImage shown;
    QImage shadowedShape;
    QImage shadow;
    /// Of the picture, what can be seen without a compositor.
    Outline outline;
    bool isStale = true;
    int handling = 0;
    /// What fine wheels have turned since the last whole notch.
    QPoint turned;
    bool isReleased = false;
    bool letsMouseThrough = false;
};

using PanelWindowOwner = std::unique_ptr<PanelWindow, PanelWindow::Release>;

}  // namespace nevo
