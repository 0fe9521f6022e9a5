#include "platform/x11/ContentWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

#include "platform/x11/PageTransition.h"

namespace nevo {

namespace {

constexpr int margin = 18;

Qt::WindowFlags flagsFor(const ContentWindow::Traits& traits) {
    // A dialog: window managers put no buttons on it that a window of a fixed size has no use for.
    Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint;
    if (traits.isBare) return flags | Qt::FramelessWindowHint;
    flags |= Qt::WindowTitleHint;
    if (traits.isClosable) flags |= Qt::WindowCloseButtonHint;
    return flags;
}

}  // namespace

ContentWindow::ContentWindow(const Traits& wanted, const Images& images)
    : QWidget(nullptr, flagsFor(wanted)),
      traits(wanted),
      page(new PageArea(margin)),
      renderer(std::make_unique<ControlRenderer>(*page, images)) {
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->addWidget(page);
    fit();
}

ContentWindow::~ContentWindow() = default;

void ContentWindow::setContent(Control content, Transition transition) {
    if (!renderer) return;
    bool isSeen = isVisible() && transition != Transition::none;
    QPixmap before = isSeen ? page->grab() : QPixmap();
    renderer->show(std::move(content));
    fit();
    if (isSeen) PageTransition::run(*page, before, transition);
}

void ContentWindow::removeContent() { renderer.reset(); }

void ContentWindow::fit() {
    ensurePolished();
    int width = std::max(traits.leastSize.width(), page->neededWidth());
    int height = std::max(traits.leastSize.height(), page->neededHeight(width));
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QSize room = screen->availableSize();
        if (height > room.height()) width += page->verticalScrollBar()->sizeHint().width();
        width = std::min(width, room.width());
        height = std::min(height, room.height());
    }
    setFixedSize(width, height);
}

void ContentWindow::open(bool takesFocus) {
    if (isVisible()) return;
    fit();
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        move(screen->availableGeometry().center() - rect().center());
    }
    if (renderer) renderer->focusFirst();
    setAttribute(Qt::WA_ShowWithoutActivating, !takesFocus);
    show();
}

void ContentWindow::setStaysOnTop(bool stays) {
    Qt::WindowFlags flags = windowFlags();
    flags.setFlag(Qt::WindowStaysOnTopHint, stays);
    // Setting them the usual way would hide the window.
    overrideWindowFlags(flags);
    if (QWindow* shown = windowHandle()) shown->setFlags(flags);
}

bool ContentWindow::event(QEvent* event) {
    bool result = QWidget::event(event);
    bool looksOther = event->type() == QEvent::ApplicationFontChange ||
                      event->type() == QEvent::ApplicationPaletteChange ||
                      event->type() == QEvent::StyleChange || event->type() == QEvent::ThemeChange;
    if (looksOther && renderer) {
        renderer->refresh();
        fit();
    }
    return result;
}

void ContentWindow::closeEvent(QCloseEvent* event) {
    if (event->spontaneous() && !traits.isClosable) {
        event->ignore();
        return;
    }
    event->accept();
    hide();
    if (auto call = closed) call();
}

void ContentWindow::keyPressEvent(QKeyEvent* event) {
    bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && pressDefaultButton()) return;
    if (event->key() == Qt::Key_Escape && traits.isClosable && !traits.isBare) {
        QWidget::close();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool ContentWindow::pressDefaultButton() {
    for (QPushButton* button : findChildren<QPushButton*>()) {
        if (!button->isDefault() || !button->isVisible()) continue;
        button->click();
        return true;
    }
    return false;
}

void ContentWindow::mousePressEvent(QMouseEvent* event) {
    if (!traits.isMovableByBackground || event->button() != Qt::LeftButton) return;
    QWindow* shown = windowHandle();
    // Not every session has a window manager that can do it.
    if (shown != nullptr && shown->startSystemMove()) return;
    grip = event->globalPosition().toPoint() - pos();
}

void ContentWindow::mouseMoveEvent(QMouseEvent* event) {
    if (grip) move(event->globalPosition().toPoint() - *grip);
}

void ContentWindow::mouseReleaseEvent(QMouseEvent*) { grip.reset(); }

void ContentWindow::paintEvent(QPaintEvent*) {
    if (!traits.isBare) return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace nevo
