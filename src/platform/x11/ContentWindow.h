#pragma once

#include <QPoint>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Windows.h"
#include "platform/x11/ControlRenderer.h"

namespace nevo {

/// A window of Qt's with a tree of controls in it: as large as it was asked to be, or as its
/// content needs, but never larger than the screen; then the content scrolls.
class ContentWindow : public QWidget {
public:
    struct Traits {
        QSize leastSize;
        bool isBare = false;
        bool isClosable = true;
        bool isMovableByBackground = false;
    };

    ContentWindow(const Traits& wanted, const Images& images);
    ~ContentWindow() override;

    void setContent(Control content, Transition transition = Transition::none);
    void removeContent();
    /// Shows it, in the middle of the main screen if it wasn't in sight.
    void open(bool takesFocus);
    /// At any time, without hiding the window.
    void setStaysOnTop(bool stays);

    /// A person has closed it. The window may go to `deleteLater` meanwhile.
    std::function<void()> closed;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void fit();
    bool pressDefaultButton();

    Traits traits;
    PageArea* page;
    std::unique_ptr<ControlRenderer> renderer;
    /// From the window's corner to the pointer, while it is moved without a window manager's help.
    std::optional<QPoint> grip;
};

}  // namespace nevo
