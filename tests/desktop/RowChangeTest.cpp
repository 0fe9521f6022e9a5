// A change of the bar's row counts as a change of the screen's parameters, unless Nevo itself made
// it.

#include "desktop/NevoSession.h"

namespace nevo::desktoptest {
namespace {

class RowChange : public NevoSession {
protected:
    std::size_t told() {
        return countIn(nevo().output(), "[Nevo] Menu bar layout changed, re-enforcing alpha");
    }

    void waitForTold(std::size_t count) {
        waitFor("Nevo has heard of the row's change", [&] { return told() >= count; });
        EXPECT_EQ(told(), count);
    }
};

TEST_F(RowChange, isToldForItemsThatComeAndGoAndForAHandsDragButNotForAToggle) {
    startAll();
    EXPECT_EQ(told(), 0U);
    keepVisible(2);
    waitForTold(1);

    // The divider comes to the toggle's new place at the first collapse.
    Names all = names();
    for (int i = 0; i < 3; ++i) {
        toggle(namesRightOfToggle());
        toggle(all);
    }
    startProgram(std::string(NEVO_BAD_CLIENT) + " plain");
    waitForItems(all.size() + 1);
    waitForTold(2);
    kill(program("bad-client"), SIGKILL);
    waitForTold(3);
    waitForOnScreen(all);
    superDrag(programItems().front(), programItems().back().place.midX() + 1);
    waitForTold(4);
    EXPECT_NE(names(), all);
}

}  // namespace
}  // namespace nevo::desktoptest
