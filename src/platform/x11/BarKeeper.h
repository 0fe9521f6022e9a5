#pragma once

#include "platform/LogOutput.h"
#include "platform/RunLoop.h"
#include "platform/x11/BarClient.h"

namespace nevo {

/// Starts another bar where the one that ran has crashed, with the same options; at most one a
/// second. Leaves the tray alone that another program has, or whose bar ended in order.
class BarKeeper {
public:
    BarKeeper(const XServer& x, BarClient& barClient, RunLoop& runLoop, LogOutput& output);
    ~BarKeeper();
    BarKeeper(const BarKeeper&) = delete;
    BarKeeper& operator=(const BarKeeper&) = delete;

private:
    void ensure();
    void logLine(std::string_view text);

    const XServer& server;
    BarClient& client;
    RunLoop& loop;
    LogOutput& log;
    double nextStart;
    std::string lastFailure;
    Registration retry;
};

}  // namespace nevo
