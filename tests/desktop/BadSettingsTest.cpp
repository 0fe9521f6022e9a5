// Pictures, files and stored values that are not what they should be: Nevo stays as it was, and
// says so where it matters.

#include <QByteArray>
#include <QImage>
#include <algorithm>
#include <fstream>

#include "desktop/SettingsSession.h"

namespace nevo::desktoptest {
namespace {

namespace fs = std::filesystem;

/// A drawing that takes a billion steps or bytes for whoever believes it.
std::string bombOfEntities() {
    std::string text = "<?xml version=\"1.0\"?><!DOCTYPE svg [<!ENTITY a0 \"laugh\">";
    for (int i = 1; i < 12; ++i) {
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int j = 0; j < 10; ++j) text += "&a" + std::to_string(i - 1) + ";";
        text += "\">";
    }
    return text + "]><svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\">" +
           "<text>&a11;</text></svg>";
}
std::string bombOfUses() {
    std::string text =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:x=\"http://www.w3.org/1999/xlink\" "
        "width=\"9\" height=\"9\"><defs><rect id=\"a0\" width=\"9\" height=\"9\"/>";
    for (int i = 1; i < 12; ++i) {
        text += "<g id=\"a" + std::to_string(i) + "\">";
        for (int j = 0; j < 10; ++j) text += "<use x:href=\"#a" + std::to_string(i - 1) + "\"/>";
        text += "</g>";
    }
    return text + "</defs><use x:href=\"#a11\"/></svg>";
}

class BadSettings : public SettingsSession {
protected:
    fs::path write(const std::string& name, const std::string& content) const {
        std::ofstream(folder / name, std::ios::binary) << content;
        return folder / name;
    }
    /// A picture of one colour that compresses to nearly nothing.
    fs::path writePicture(const std::string& name, int side, QImage::Format format) const {
        QImage image(side, side, format);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(QString::fromStdString(folder / name)));
        return folder / name;
    }
    /// As Nevo's own icon, by keyboard alone.
    void chooseIcon(const fs::path& file) {
        tabTo("push button", "Drop a picture here");
        hand->press(spaceKey);
        control("text", "File name:");
        hand->type(file);
        hand->press(returnKey);
        waitFor("the file is taken", [this] { return !has("text", "File name:"); });
    }
    std::vector<std::uint32_t> pixelsOfToggle() const {
        return screenshot().pixels(toggleItem().place);
    }
    /// Since this was last asked: the most memory that Nevo had at a time, beyond what it had then.
    long grownMegabytes() {
        auto process = fs::path("/proc") / std::to_string(nevo().pid());
        std::string text = readFile(process / "status");
        auto value = [&](const char* key) { return std::stol(text.substr(text.find(key) + 6)); };
        long grown = (value("VmHWM:") - lastKilobytes) / 1024;
        lastKilobytes = value("VmRSS:");
        constexpr const char* resetsPeak = "5";
        std::ofstream(process / "clear_refs") << resetsPeak;
        return grown;
    }
    std::size_t complaints() const { return countIn(nevo().output(), "stored values:"); }

    long lastKilobytes = 0;
};

TEST_F(BadSettings, whatIsNoIconOrTooLargeChangesNothingAndTakesNoMemory) {
    startAll();
    openSettings();
    goTo("Bar");
    auto standard = pixelsOfToggle();
    for (const char* good : {"good.icns", "good.png"}) {
        if (pixelsOfToggle() != standard) {
            clickOn("push button", "Use Standard Icon");
            waitFor("the toggle is as at first", [&] { return pixelsOfToggle() == standard; });
        }
        chooseIcon(writePicture(good, 512, QImage::Format_ARGB32));
        waitFor("the toggle is red", [&] {
            auto pixels = pixelsOfToggle();
            return std::count(pixels.begin(), pixels.end(), 0xff0000U) > 100;
        });
    }
    auto red = pixelsOfToggle();
    std::string stored = readFile(defaultsFile("com.nevoapp.Nevo"));
    grownMegabytes();

    fs::path huge = writePicture("huge.png", 20000, QImage::Format_Mono);
    for (const fs::path& bad :
         {write("words.png", "No picture at all.\n"), write("words.icns", "icns, but only so."),
          write("claim.png", readFile(huge).substr(0, 400)), huge,
          writePicture("wide.png", 4000, QImage::Format_Mono), write("laugh.png", bombOfEntities()),
          write("laugh.icns", bombOfUses())}) {
        SCOPED_TRACE(bad.filename());
        chooseIcon(bad);
        EXPECT_LT(grownMegabytes(), 64);
        EXPECT_TRUE(pixelsOfToggle() == red);
        EXPECT_TRUE(readFile(defaultsFile("com.nevoapp.Nevo")) == stored);
    }
    clickOn("push button", "Use Standard Icon");
    waitFor("the toggle is as at first", [&] { return pixelsOfToggle() == standard; });
}

TEST_F(BadSettings, aStoreThatCannotBeWrittenIsToldOnceAndCostsNothing) {
    startAll(R"(, "displayMode": "shelf")");
    openSettings();
    auto file = defaultsFile("com.nevoapp.Nevo");
    auto place = file.parent_path();
    bool isOn = true;
    // In the place of the file, and in that of its folder.
    for (bool isFolder : {false, true}) {
        SCOPED_TRACE(isFolder);
        fs::rename(isFolder ? place : file, folder / "aside");
        if (isFolder) {
            std::ofstream(place) << "in the way";
        } else {
            fs::create_directory(file);
        }
        auto before = complaints();
        goTo("General");
        for (int i = 0; i < 3; ++i) {
            clickOn("check box", "Animate the shelf");
            isOn = !isOn;
            waitFor("the change is in force", [&] {
                return control("check box", "Animate the shelf").is(Accessible::checked) == isOn;
            });
        }
        goTo("Bar");
        EXPECT_TRUE(
            control("radio button", "In the shelf, a floating bar").is(Accessible::checked));
        EXPECT_EQ(complaints(), before + 1) << nevo().output();

        fs::remove(isFolder ? place : file);
        fs::rename(folder / "aside", isFolder ? place : file);
        goTo("General");
        clickOn("check box", "Start Nevo when I log in");
        waitForStored(std::string(R"("animationsEnabled": )") + (isOn ? "true" : "false"));
        waitForStored(R"("displayMode": "shelf")");
    }
}

TEST_F(BadSettings, nonsenseThatIsStoredCountsAsNothing) {
    std::string bomb = QByteArray::fromStdString(bombOfUses()).toBase64().toStdString();
    startAll(R"(, "toggleShortcut": "\u2603\u2603",
                  "nevo_shelf_appearance": 7, "autoHideDelay": "soon", "nevo_icon_rules": [],
                  "nevo_custom_icon_data": {"base64": ")" +
             bomb + "\"}");
    hand->press('b', {leftSuperKey, leftShiftKey});
    waitForOnScreen(names());
    EXPECT_FALSE(screenshot().isEmptyBar(toggleItem().place));
}

}  // namespace
}  // namespace nevo::desktoptest
