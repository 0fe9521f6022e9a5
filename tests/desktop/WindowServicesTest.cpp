// What else of the program's surfaces is the desktop's: questions, files, the start with the
// session, and whether things may move.

#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <cstdlib>
#include <fstream>

#include "desktop/WindowSession.h"
#include "platform/x11/X11Alerts.h"
#include "platform/x11/X11Files.h"
#include "platform/x11/X11LoginItem.h"

namespace nevo::desktoptest {
namespace {

namespace fs = std::filesystem;

class WindowServices : public WindowSession {
protected:
    /// Answers a question: `act` is called when its box takes keys, and again when nothing has come
    /// of it, since the window before may have taken the keys along with it.
    AlertAnswer ask(const Alert& alert, const std::function<void(QMessageBox&)>& act) {
        constexpr int ticksPerTry = 100;
        int ticks = 0;
        Registration look = platform().runLoop.timer(0.02, true, [&] {
            auto* box = qobject_cast<QMessageBox*>(widgetOf(alert.name));
            if (box == nullptr || !box->isActiveWindow()) return;
            if (ticks++ % ticksPerTry == 0) act(*box);
        });
        // A question that never hears its key fails this test alone.
        Registration giveUp = platform().runLoop.timer(20, false, [&] {
            ADD_FAILURE() << "nobody has answered";
            if (auto* box = qobject_cast<QMessageBox*>(widgetOf(alert.name))) box->done(0);
        });
        return X11Alerts().run(alert);
    }
    fs::path write(const std::string& name, const std::string& content) {
        fs::path path = folder / "home" / name;
        std::ofstream(path) << content;
        return path;
    }
};

TEST_F(WindowServices, aQuestionIsAnsweredByItsButtonsOrByGoingAway) {
    Alert alert{"question",
                "<b>Really</b>",
                "It &is <i>so</i>.",
                {"Do", "Perhaps", "Don't"},
                "Never again"};
    auto byDefault = ask(alert, [&](QMessageBox& box) {
        for (QLabel* label : box.findChildren<QLabel*>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
        }
        hand->press(returnKey);
    });
    EXPECT_EQ(byDefault.button, 0U);
    EXPECT_FALSE(byDefault.suppresses);
    auto byEscape = ask(alert, [&](QMessageBox& box) {
        box.checkBox()->setChecked(false);
        box.checkBox()->setFocus();
        hand->press(spaceKey);
        hand->press(escapeKey);
    });
    EXPECT_EQ(byEscape.button, 2U);
    EXPECT_TRUE(byEscape.suppresses);
    auto second = ask(alert, [&](QMessageBox& box) {
        box.findChild<QAbstractButton*>("1")->setFocus();
        hand->press(spaceKey);
    });
    EXPECT_EQ(second.button, 1U);
    alert.suppressionTitle.reset();
    alert.buttons = {"Well"};
    EXPECT_EQ(ask(alert, [&](QMessageBox&) { hand->press(escapeKey); }).button, 0U);
}

TEST_F(WindowServices, filesAreReadWithinBoundsAndKnownByTheirContent) {
    X11Files files;
    // The name says something else.
    fs::path picture = write("a.txt", "\x89PNG\r\n\x1a\n and so on");
    EXPECT_EQ(files.contentType(picture), "image/png");
    EXPECT_EQ(files.contentType(write("b", "icns\x00\x00\x00\x08")), "image/x-icns");
    EXPECT_EQ(files.contentType(folder / "none"), "");

    fs::path five = write("five", "12345");
    EXPECT_EQ(files.read(five, 5), (Bytes{'1', '2', '3', '4', '5'}));
    EXPECT_EQ(files.read(five, 4), std::nullopt);
    // What never ends, or never begins, is not read.
    EXPECT_EQ(files.read("/dev/zero", 10), std::nullopt);
    EXPECT_EQ(files.read(folder, 10), std::nullopt);
    EXPECT_EQ(files.read(folder / "none", 10), std::nullopt);
}

TEST_F(WindowServices, filesAreMovedAndThrownAwayOrItIsSaidWhyNot) {
    X11Files files;
    fs::path one = write("one", "1");
    fs::path two = write("two", "2");
    auto refusal = files.move(one, two);
    ASSERT_TRUE(refusal);
    EXPECT_NE(refusal->find(one.string()), std::string::npos) << *refusal;
    EXPECT_EQ(readFile(two), "2");
    EXPECT_EQ(files.move(one, folder / "home/three"), std::nullopt);
    EXPECT_FALSE(files.exists(one));
    ::setenv("XDG_DATA_HOME", (folder / "home/.local/share").c_str(), 1);
    EXPECT_EQ(files.moveToTrash(folder / "home/three"), std::nullopt);
    EXPECT_FALSE(files.exists(folder / "home/three"));
    EXPECT_TRUE(fs::exists(folder / "home/.local/share/Trash/files/three"));
    EXPECT_TRUE(files.moveToTrash(folder / "home/three"));
    ::unsetenv("XDG_DATA_HOME");
}

TEST_F(WindowServices, aFileIsChosenWhileTheProgramGoesOn) {
    X11Files files;
    fs::path chosen = write("picture.png", "\x89PNG\r\n\x1a\n");
    std::vector<std::optional<std::string>> told;
    auto open = [&] {
        files.choose({"image/png"}, [&](const auto& path) { told.push_back(path); });
        EXPECT_TRUE(soon(
            [&] { return widgetOf("choose") != nullptr && widgetOf("choose")->isActiveWindow(); }));
        return qobject_cast<QFileDialog*>(widgetOf("choose"));
    };
    open()->findChild<QLineEdit*>()->setText(QString::fromStdString(chosen.string()));
    settle();
    EXPECT_TRUE(told.empty());
    hand->press(returnKey);
    ASSERT_TRUE(soon([&] { return told.size() == 1; }));
    EXPECT_EQ(told[0], chosen.string());
    settle();
    open();
    hand->press(escapeKey);
    ASSERT_TRUE(soon([&] { return told.size() == 2; }));
    EXPECT_EQ(told[1], std::nullopt);
}

TEST_F(WindowServices, theStartWithTheSessionIsAnEntryThatOthersMayChange) {
    X11LoginItem item("/opt/a \"b\" $c `d` \\e 50%/nevo");
    fs::path entry = X11LoginItem::entryFile();
    EXPECT_EQ(entry, folder / "home/.config/autostart/com.nevoapp.Nevo.desktop");
    EXPECT_FALSE(item.isRegistered());
    EXPECT_EQ(item.setRegistered(false), std::nullopt);
    EXPECT_EQ(item.setRegistered(true), std::nullopt);
    EXPECT_TRUE(item.isRegistered());
    std::string text = readFile(entry);
    EXPECT_NE(text.find("Exec=\"/opt/a \\\\\"b\\\\\" \\\\$c \\\\`d\\\\` \\\\\\\\e 50%%/nevo\"\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("TryExec=/opt/a \"b\" $c `d` \\\\e 50%/nevo\n"), std::string::npos) << text;

    for (const char* line : {"Hidden=true", "X-GNOME-Autostart-enabled = false"}) {
        std::ofstream(entry) << "[Desktop Entry]\nExec=nevo\n" << line << "\n";
        EXPECT_FALSE(item.isRegistered()) << line;
        EXPECT_EQ(item.setRegistered(true), std::nullopt);
        EXPECT_TRUE(item.isRegistered());
    }
    std::ofstream(entry) << "[Desktop Entry]\nExec=nevo\n[Other]\nHidden=true\n";
    EXPECT_TRUE(item.isRegistered());
    EXPECT_EQ(item.setRegistered(false), std::nullopt);
    EXPECT_FALSE(fs::exists(entry));

    // Something else stands where the folder should.
    fs::remove_all(entry.parent_path());
    std::ofstream(entry.parent_path()) << "";
    auto refusal = item.setRegistered(true);
    ASSERT_TRUE(refusal);
    EXPECT_TRUE(refusal->ends_with(").")) << *refusal;
    EXPECT_FALSE(item.isRegistered());
}

/// A program that hands the desktop's settings to all others.
class SettingsOwner : public SelectionHolder {
public:
    explicit SettingsOwner(const xcb::Connection& asker)
        : SelectionHolder("_XSETTINGS_S0"), server(asker) {
        xcb::Atoms atoms(server.get(), {});
        xcb::Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            server.get(), xcb_get_selection_owner(server.get(), atoms["_XSETTINGS_S0"]), nullptr));
        if (reply) owner = reply->owner;
    }

    void write(const std::string& settings) {
        xcb::Atoms atoms(server.get(), {});
        xcb_atom_t property = atoms["_XSETTINGS_SETTINGS"];
        xcb_change_property(server.get(), XCB_PROP_MODE_REPLACE, owner, property, property, 8,
                            static_cast<std::uint32_t>(settings.size()), settings.data());
        server.flush();
    }
    /// Tells everybody that there is a new one.
    void announce() {
        xcb::Atoms atoms(server.get(), {});
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = server.root();
        message.type = atoms["MANAGER"];
        message.data.data32[1] = atoms["_XSETTINGS_S0"];
        message.data.data32[2] = owner;
        xcb_send_event(server.get(), 0, server.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        server.flush();
    }

    static std::string little(std::uint32_t value, std::size_t size) {
        std::string bytes;
        for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(value >> 8 * i & 0xff);
        return bytes;
    }
    static std::string number(const std::string& name, std::uint32_t value) {
        return entry(0, name) + little(value, 4);
    }
    static std::string text(const std::string& name, const std::string& value) {
        return entry(1, name) + little(static_cast<std::uint32_t>(value.size()), 4) + padded(value);
    }
    static std::string all(std::uint32_t count, const std::string& entries) {
        return little(0, 4) + little(1, 4) + little(count, 4) + entries;
    }

private:
    static std::string padded(const std::string& text) {
        return text + std::string((4 - text.size() % 4) % 4, '\0');
    }
    static std::string entry(std::uint32_t type, const std::string& name) {
        return little(type, 2) + little(static_cast<std::uint32_t>(name.size()), 2) + padded(name) +
               little(0, 4);
    }

    const xcb::Connection& server;
    xcb_window_t owner = XCB_WINDOW_NONE;
};

TEST_F(WindowServices, lessMotionIsASettingOfTheDesktopThatMayComeAndGo) {
    int told = 0;
    windows->reducedMotionDidChange = [&] { ++told; };
    EXPECT_FALSE(windows->prefersReducedMotion());
    auto owner = std::make_unique<SettingsOwner>(*server);
    auto text = SettingsOwner::text("Net/ThemeName", "Plain");
    auto still = SettingsOwner::number("Gtk/EnableAnimations", 0);
    owner->write(SettingsOwner::all(3, text + SettingsOwner::number("Xft/DPI", 96) + still));
    owner->announce();
    EXPECT_TRUE(soon([&] { return windows->prefersReducedMotion(); }));
    // Cut short, or with more entries promised than there are: says nothing.
    owner->write(SettingsOwner::all(0xffffffff, SettingsOwner::number("Xft/DPI", 96)));
    EXPECT_TRUE(soon([&] { return told == 2; }));
    EXPECT_FALSE(windows->prefersReducedMotion());
    owner->write(SettingsOwner::all(1, still));
    EXPECT_TRUE(soon([&] { return told == 3; }));
    owner.reset();
    EXPECT_TRUE(soon([&] { return told == 4; }));
    EXPECT_FALSE(windows->prefersReducedMotion());
}

}  // namespace
}  // namespace nevo::desktoptest
