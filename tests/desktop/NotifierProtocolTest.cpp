// What an item of the bus says of itself, and what is done to it, word by word.

#include <fmt/format.h>

#include <QImage>

#include "desktop/BusSession.h"
#include "desktop/FakeNotifier.h"

namespace nevo::desktoptest {
namespace {

class NotifierProtocol : public BusSession {
protected:
    void TearDown() override {
        program.reset();
        BusSession::TearDown();
    }

    void offer(const QVariantMap& properties, const std::set<std::string>& unknown = {}) {
        program.reset();
        waitFor("the one before is gone", [this] { return items().empty(); });
        program = std::make_unique<FakeNotifier>(busAddress());
        program->properties.insert(properties);
        program->unknown = unknown;
        program->enroll();
        await("its item can be seen", [this] { return isShown(); });
    }
    bool isShown() const {
        auto all = items();
        return all.size() == 1 && all[0].onScreen;
    }
    Point middle() const { return items().front().place.center(); }
    std::string at(const char* call) const {
        return fmt::format("{} {} {}", call, middle().x, middle().y);
    }
    void expectCalls(const Names& expected) {
        await("it gets so many calls", [&] { return program->calls.size() >= expected.size(); });
        EXPECT_EQ(program->calls, expected);
        program->calls.clear();
    }

    void change(const char* property, const QVariant& value, const char* signal) {
        program->properties[property] = value;
        program->say(signal);
    }
    void expectColor(std::uint32_t color, double offset = 0) {
        Rect spot{middle().x + offset, middle().y + offset, 1, 1};
        await(fmt::format("it is {:06x}", color),
              [&] { return (screenshot().pixels(spot).at(0) & 0xffffffU) == color; });
    }
    /// Until the program is asked for its menu, which on a busy machine isn't shown any more so
    /// long after a click.
    void expectMenuAfterClick(int button) {
        waitFor("it is asked for its menu", [&] {
            hand->click(middle(), button);
            return holdsWithin(std::chrono::seconds(5), [this] {
                QCoreApplication::processEvents();
                return !program->calls.empty();
            });
        });
        for (const std::string& call : program->calls) EXPECT_EQ(call, at("ContextMenu"));
        program->calls.clear();
    }
    QString paint(const char* name, const char* color) {
        QImage image(22, 22, QImage::Format_ARGB32);
        image.fill(QColor(color));
        QString file = QString::fromStdString((folder / name).string());
        EXPECT_TRUE(image.save(file));
        return file;
    }

    std::unique_ptr<FakeNotifier> program;
};

TEST_F(NotifierProtocol, clicksAndTheWheelReachTheProgram) {
    startBar();
    offer({{"IconPixmap", FakeNotifier::pixmap(0xff0000)}});
    for (int button = 1; button <= 7; ++button) hand->click(middle(), button);
    expectCalls({at("Activate"), at("SecondaryActivate"), at("ContextMenu"), "Scroll 120 vertical",
                 "Scroll -120 vertical", "Scroll 120 horizontal", "Scroll -120 horizontal"});

    // Whoever says that a menu is all there is gets no clicks, whatever button.
    offer({{"ItemIsMenu", true}});
    hand->click(middle());
    expectCalls({at("ContextMenu")});

    // A menu that isn't there, for a click as for the right button.
    offer({{"Menu", "/NoSuchMenu"}}, {"Activate"});
    expectMenuAfterClick(1);
    expectMenuAfterClick(3);
}

TEST_F(NotifierProtocol, picturesFollowWhatTheProgramSays) {
    startBar();
    QVariant blue = FakeNotifier::pixmap(0x0000ff);
    paint("overlay.png", "#ffff00");
    offer({{"IconName", paint("icon.png", "#ff0000")},
           {"IconPixmap", blue},
           {"IconThemePath", QString::fromStdString(folder.string())},
           {"OverlayIconName", "overlay"},
           {"AttentionIconPixmap", blue}});
    expectColor(0xff0000, -6);
    expectColor(0xffff00, 6);
    paint("icon.png", "#00ff00");
    program->say("NewIcon");
    expectColor(0x00ff00, -6);
    // The one file goes, and then the other has new contents, for which the bar looks after it.
    std::filesystem::remove(folder / "icon.png");
    program->say("NewIcon");
    paint("overlay.png", "#ff00ff");
    program->say("NewOverlayIcon");
    expectColor(0xff00ff, 6);
    expectColor(0x00ff00, -6);
    change("IconName", "", "NewIcon");
    expectColor(0x0000ff, -6);

    change("AttentionIconPixmap", FakeNotifier::pixmap(0xff8000), "NewAttentionIcon");
    change("Status", "NeedsAttention", "NewStatus");
    expectColor(0xff8000, -6);
    change("Status", "Passive", "NewStatus");
    await("it has nothing to show", [this] { return items().empty(); });
    change("Status", "Active", "NewStatus");
    await("it is there again", [this] { return isShown(); });
    expectColor(0x0000ff, -6);
}

}  // namespace
}  // namespace nevo::desktoptest
