#include "platform/x11/X11Windows.h"

#include "platform/x11/AccessibleRoles.h"
#include "platform/x11/ContentWindow.h"

namespace nevo {

namespace {

constexpr unsigned closable = 2;
constexpr int floatingLevel = 3;

class X11Window : public Window {
public:
    X11Window(const WindowConfiguration& configuration, const Images& images)
        : window(new ContentWindow(traitsOf(configuration), images)) {
        window->setObjectName(QString::fromStdString(configuration.name));
        window->setWindowRole(QString::fromStdString(configuration.name));
        window->setWindowTitle(QString::fromStdString(configuration.title));
        window->setStaysOnTop(configuration.level >= floatingLevel);
        window->closed = [this] {
            if (auto call = didClose) call();
        };
    }
    /// Later: the call may come from one of its widgets.
    ~X11Window() override {
        window->closed = nullptr;
        window->removeContent();
        window->hide();
        window->deleteLater();
    }
    X11Window(const X11Window&) = delete;
    X11Window& operator=(const X11Window&) = delete;

    void setContent(Control content, Transition transition) override {
        window->setContent(std::move(content), transition);
    }
    bool isVisible() const override { return window->isVisible(); }
    void makeKeyAndOrderFront() override {
        window->open(true);
        window->raise();
        window->activateWindow();
    }
    void orderBack() override {
        window->open(false);
        window->lower();
    }
    void setLevel(int level) override { window->setStaysOnTop(level >= floatingLevel); }
    void close() override { window->hide(); }

private:
    static ContentWindow::Traits traitsOf(const WindowConfiguration& configuration) {
        ContentWindow::Traits traits;
        traits.leastSize = {static_cast<int>(configuration.size.width),
                            static_cast<int>(configuration.size.height)};
        traits.isBare = configuration.isBare;
        traits.isClosable = (configuration.styleMask & closable) != 0;
        traits.isMovableByBackground = configuration.isMovableByBackground;
        return traits;
    }

    ContentWindow* window;
};

}  // namespace

X11Windows::X11Windows(const Images& pictures, XServer& server, EventPump& pump)
    : images(pictures), motion(server, pump) {
    installAccessibleRoles();
    motion.changed = [this] {
        if (reducedMotionDidChange) reducedMotionDidChange();
    };
}

std::unique_ptr<Window> X11Windows::create(const WindowConfiguration& configuration) {
    return std::make_unique<X11Window>(configuration, images);
}

}  // namespace nevo
