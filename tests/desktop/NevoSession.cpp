#include "desktop/NevoSession.h"

#include <QByteArray>
#include <algorithm>
#include <fstream>

namespace nevo::desktoptest {

void NevoSession::startAll(const std::string& moreValues) {
    startDesktop();
    startUsing(moreValues);
}

void NevoSession::startUsing(const std::string& moreValues) {
    auto file = defaultsFile("com.nevoapp.Nevo");
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << R"({"nevo_onboarding_completed": true)" << moreValues << "}";
    startNevo();
    waitForOnScreen({});
}

std::string NevoSession::bytesValue(const std::string& key, const char* json) {
    return ", \"" + key + "\": {\"base64\": \"" + QByteArray(json).toBase64().toStdString() + "\"}";
}

void NevoSession::toggle(const Names& expectedOnScreen) {
    click(toggleItem());
    waitForOnScreen(expectedOnScreen);
}

void NevoSession::keepVisible(std::size_t count) {
    if (namesOnScreen() != names()) toggle(names());
    auto now = programItems();
    const Item& neighbour = now[now.size() - count];
    superDrag(toggleItem(), neighbour.place.x + 2);
    waitFor("the toggle stands where it was dragged",
            [&] { return namesRightOfToggle().size() == count && namesOnScreen() == names(); });
}

Names NevoSession::namesRightOfToggle() const {
    double x = toggleItem().slot.x;
    Names names;
    for (const Item& item : programItems()) {
        if (item.slot.x > x) names.push_back(nameOf(item));
    }
    return names;
}

void NevoSession::waitForPlaces(const std::vector<Item>& before) const {
    waitFor("every item stands in its place again", [&] {
        auto now = programItems();
        return std::equal(now.begin(), now.end(), before.begin(), before.end(),
                          [this](const Item& item, const Item& old) {
                              return nameOf(item) == nameOf(old) && item.place == old.place &&
                                     item.opacity == 1 && !item.floating;
                          });
    });
}

}  // namespace nevo::desktoptest
