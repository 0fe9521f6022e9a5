#pragma once

#include <QObject>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Controls.h"
#include "platform/Images.h"

namespace nevo {

/// One control of a tree, shown by a widget of Qt's. The widget stays while the control's place in
/// the tree, its kind and its key do; what the control says may change at any time.
///
/// A callback of the control may destroy its view. So the widget itself goes at a later turn of the
/// loop, and what it still has to say then reaches nobody.
class ControlView {
public:
    ControlView(const Images& pictures, QWidget* shownBy);
    virtual ~ControlView();
    ControlView(const ControlView&) = delete;
    ControlView& operator=(const ControlView&) = delete;

    QWidget& widget() const { return *made; }
    const Control& control() const { return shown; }
    /// Whether this view can go on to show `next`.
    bool canBecome(const Control& next) const;
    /// Whether both are groups without a key of the same kind.
    bool resembles(const Control& next) const;

    /// Shows `next`; calls none of its callbacks.
    void update(Control next);
    /// Shows the same once more: after a change of font or palette, or of the widget by a person
    /// that the control hasn't followed.
    virtual void refresh();

    /// The widgets that take keys, in the order of Tab.
    virtual void appendOperable(std::vector<QWidget*>&) const {}
    /// Whether it wants all the height that there is.
    virtual bool fillsHeight() const { return false; }
    /// Whether it uses more width than it needs.
    virtual bool fillsWidth() const { return true; }
    /// Puts its texts in the middle.
    virtual void setCentered(bool) {}

protected:
    /// Brings the widget to what `control()` says.
    virtual void present() = 0;
    /// What `update` does besides, with the children that came along.
    virtual void takeChildren(std::vector<Control>) {}

    /// Calls one of the control's callbacks for what a person has done. This view may be gone
    /// afterwards.
    template <class... Values>
    void tell(const std::function<void(Values...)>& callback,
              const std::type_identity_t<Values>&... values) {
        if (isUpdating) return;
        refreshSoon();
        if (auto call = callback) call(values...);
    }

    const Images& images;
    /// What connections end with.
    QObject context;

private:
    void refreshSoon();

    QWidget* made;
    Control shown;
    /// As `canBecome` compares it.
    std::string identity;
    bool isUpdating = false;
};

/// A view of `control`'s kind, not yet updated. Never nullptr.
std::unique_ptr<ControlView> makeControlView(const Control& control, const Images& images);

}  // namespace nevo
