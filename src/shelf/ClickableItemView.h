#pragma once

#include <functional>
#include <optional>

#include "platform/Panels.h"

namespace nevo {

/// A slot of the floating bar: tells clicks, right clicks and drags apart. It reacts to the first
/// click also while another program is in front.
class ClickableItemView {
public:
    ClickableItemView(PanelView slot, Color normal, Color highlighted);

    std::function<void()> onClick;
    /// Place on the screen, origin at the bottom left.
    std::function<void(Point)> onRightClick;
    std::function<void()> onDragBegin;
    /// Place in the panel.
    std::function<void(Point)> onDrag;
    std::function<void()> onDragEnd;

    /// What is drawn. Whoever changes it puts it into the panel.
    PanelView view;
    Color normalBackgroundColor;
    Color highlightedBackgroundColor;
    bool isHighlighted = false;

    /// Takes an event of the panel at `panelFrame`. `repaint` is called when its looks have
    /// changed, before any other callback. The caller keeps it alive meanwhile.
    void handle(const PanelEvent& event, const Rect& panelFrame,
                const std::function<void(const PanelView&)>& repaint);

    /// Sets the background that fits `isHighlighted`.
    void paint() {
        view.background = isHighlighted ? highlightedBackgroundColor : normalBackgroundColor;
    }

private:
    void mouseDown(const PanelEvent& event);
    void mouseDragged(const PanelEvent& event);
    void mouseUp(const PanelEvent& event, Point onScreen);

    bool pendingRightClick = false;
    std::optional<Point> mouseDownPoint;
    bool didDrag = false;
};

}  // namespace nevo
