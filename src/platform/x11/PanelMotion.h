#pragma once

#include <QVariantAnimation>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Panels.h"

namespace nevo {

/// A value's way to another, begun; `step` is called for each of its stations, the end included.
std::unique_ptr<QVariantAnimation> motion(const QVariant& from, const QVariant& to,
                                          const Animation& animation, std::function<void()> step);

/// The views of a panel, of which some are on their way from one frame or alpha to the next.
class MovingViews {
public:
    /// `changed` is called when they are to be drawn anew.
    explicit MovingViews(std::function<void()> changed) : onChange(std::move(changed)) {}

    void replace(std::vector<PanelView> views);
    /// A frame or an alpha that stays the same stays on its way, if it is on one.
    void set(const PanelView& view, const std::optional<Animation>& animation);
    void bringToFront(const std::string& key);

    /// As they are to be drawn now, back to front.
    std::vector<PanelView> now() const;
    /// The topmost one at `place` that `isMeant`, where its way leads it; nullptr for none.
    const PanelView* at(Point place, const std::function<bool(const PanelView&)>& isMeant) const;

private:
    struct Entry {
        PanelView goal;
        std::unique_ptr<QVariantAnimation> frame;
        std::unique_ptr<QVariantAnimation> alpha;

        Rect frameNow() const;
        double alphaNow() const;
    };

    std::function<void()> onChange;
    std::vector<Entry> entries;
};

}  // namespace nevo
