#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

#include "core/debugLog.h"
#include "platform/Task.h"
#include "platform/sim/SimDesktop.h"

namespace nevo {

/// A desktop for one part of the logic, without the whole program on it.
class LogicTest : public testing::Test {
protected:
    /// Runs a task to its end on the virtual clock.
    template <typename T>
    T finish(Task<T> task) {
        auto result = std::make_shared<std::optional<T>>();
        spawn(desktop.loop, keep(std::move(task), result));
        desktop.loop.runFor(60);
        EXPECT_TRUE(result->has_value());
        return std::move(**result);
    }

    /// Runs another program with one item and returns the item's window.
    WindowNumber launch(const std::string& handle, const std::string& bundleID, double width) {
        SimItemPlan item;
        item.width = width;
        return launch(handle, bundleID, item);
    }
    WindowNumber launch(const std::string& handle, const std::string& bundleID, SimItemPlan item) {
        SimOtherProgram program;
        program.handle = handle;
        program.application.bundleIdentifier = bundleID;
        program.application.localizedName = handle;
        item.label = handle;
        program.items = {item};
        desktop.applications.add(program);
        desktop.applications.launch(handle);
        desktop.loop.runFor(1);
        return desktop.applications.findItem(handle)->window;
    }

    bool logHas(const std::string& line) const {
        const auto& lines = desktop.log.lines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    std::ptrdiff_t logCount(const std::string& part) const {
        const auto& lines = desktop.log.lines();
        return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }

    SimDesktop desktop;
    Platform platform = desktop.platform();
    DebugLogScope logScope{desktop.log};

private:
    template <typename T>
    static Task<> keep(Task<T> task, std::shared_ptr<std::optional<T>> result) {
        T value = co_await task;
        result->emplace(std::move(value));
    }
};

}  // namespace nevo
