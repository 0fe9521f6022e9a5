#include "platform/x11/BarKeeper.h"

#include <algorithm>
#include <utility>

#include "platform/x11/BarLauncher.h"

namespace nevo {

namespace {
/// Seconds from one start to the next: a bar that can't live must not cost more than this.
constexpr double startInterval = 1;
}  // namespace

BarKeeper::BarKeeper(const XServer& x, BarClient& barClient, RunLoop& runLoop, LogOutput& output)
    : server(x), client(barClient), loop(runLoop), log(output), nextStart(runLoop.now()) {
    client.crashed = [this] {
        logLine("the menu bar has crashed");
        ensure();
    };
    // The bar may have gone since somebody saw it.
    if (client.control() == 0) ensure();
}

BarKeeper::~BarKeeper() { client.crashed = nullptr; }

void BarKeeper::ensure() {
    retry.reset();
    // A bar that has the tray and dies before it has announced itself is missed otherwise.
    client.attach();
    // The one that was started last may have been ended meanwhile.
    if (client.hasEnded() || trayIsTaken(server)) return;
    // The display takes the bar along when it goes, and nobody answers any more.
    if (server.connection().isBroken()) return;
    if (loop.now() >= nextStart) {
        nextStart = loop.now() + startInterval;
        auto failure = launchBar(client.options());
        if (std::exchange(lastFailure, failure) != failure && !failure.empty()) logLine(failure);
    }
    retry = loop.timer(std::max(0.0, nextStart - loop.now()), false, [this] { ensure(); });
}

void BarKeeper::logLine(std::string_view text) {
    auto line = "[Nevo] " + std::string(text) + "\n";
    log.writeStandardError(line);
    log.appendToLogFile(line);
}

}  // namespace nevo
