#include "platform/x11/X11Popover.h"

#include <QFrame>
#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/x11/ControlRenderer.h"
#include "platform/x11/Panel.h"
#include "platform/x11/QtScale.h"
#include "platform/x11/X11Menus.h"

namespace nevo {

namespace {

constexpr int margin = 16;

}  // namespace

class PopoverPanel : public QFrame {
public:
    PopoverPanel(const Images& images, bool isRounded, Size least)
        : QFrame(nullptr, Qt::Popup),
          leastSize(static_cast<int>(least.width), static_cast<int>(least.height)),
          page(new PageArea(margin)),
          renderer(*page, images) {
        setObjectName("popover");
        setAttribute(Qt::WA_DeleteOnClose);
        stylePanel(*this, "QFrame#popover", isRounded);
        auto* all = new QVBoxLayout(this);
        all->setContentsMargins(0, 0, 0, 0);
        all->addWidget(page);
    }

    void showContent(Control content) {
        renderer.show(std::move(content));
        ensurePolished();
        int width = std::max(leastSize.width(), page->neededWidth());
        setFixedSize(width, std::max(leastSize.height(), page->neededHeight(width)));
    }

private:
    QSize leastSize;
    PageArea* page;
    ControlRenderer renderer;
};

X11Popover::X11Popover(XServer& x, BarClient& client, const Images& pictures,
                       const Compositor& manager)
    : server(x), bar(client), images(pictures), compositor(manager) {}

X11Popover::~X11Popover() { delete panel; }

void X11Popover::setContent(Control newContent) {
    content = std::move(newContent);
    if (isShown()) panel->showContent(content);
}

bool X11Popover::isShown() const { return panel && panel->isVisible(); }

void X11Popover::performClose() {
    if (panel) panel->close();
}

void X11Popover::show(Rect, StatusItemButton& button, int) {
    delete panel;
    panel = new PopoverPanel(images, compositor.isRunning(), size);
    panel->showContent(content);
    Point left = hangingPlace(server, bar, button, 0);
    Point place = hangingPlace(server, bar, button, panel->width() * QtScale::at(left).factor);
    QPoint at = QtScale::at(left).fromRoot(place) + QPoint(0, 4);
    if (const QScreen* screen = QGuiApplication::screenAt(at)) {
        // Never over the edge of the screen.
        int right = screen->geometry().right() - panel->width() - 4;
        at.setX(std::max(screen->geometry().left() + 4, std::min(at.x(), right)));
    }
    panel->move(at);
    panel->show();
}

}  // namespace nevo
