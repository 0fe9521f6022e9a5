#pragma once

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

#include "desktop/DesktopSession.h"
#include "desktop/TestClients.h"

namespace nevo::desktoptest {

/// A bar with a well-behaved icon in it, beside which others behave badly.
class ProbeSession : public DesktopSession {
protected:
    void SetUp() override {
        DesktopSession::SetUp();
        startBar();
        probe = std::make_unique<Probe>();
        waitForItems(1);
    }

    /// Starts a program that misbehaves, and waits until it says `word`.
    Process& startBad(const std::string& command, const std::string& word) {
        // All of a test write to the same file.
        auto name = std::filesystem::path(command.substr(0, command.find(' '))).filename();
        auto before = readFile(folder / "log" / name).size();
        Process& bad = startProgram(command);
        waitFor(command + " has " + word,
                [&] { return bad.output().find(word, before) != std::string::npos; });
        return bad;
    }

    Item probeItem() const {
        for (const Item& item : items()) {
            if (item.client == probe->window()) return item;
        }
        throw Failed("the probe has lost its item");
    }

    /// Kills it: nothing of it is left.
    void expectGoneWith(Process& bad) {
        kill(bad, SIGKILL);
        waitFor("only the probe is left", [&] { return items().size() == 1; });
        EXPECT_TRUE(becomesDense());
    }

    std::unique_ptr<Probe> probe;
};

}  // namespace nevo::desktoptest
