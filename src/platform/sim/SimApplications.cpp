#include "platform/sim/SimApplications.h"

#include <fmt/format.h>

#include <algorithm>

namespace nevo {

void SimApplications::add(SimOtherProgram program) {
    byBundle[program.application.bundleIdentifier].push_back(programs.size());
    programs.push_back(std::move(program));
}

bool SimApplications::launch(const std::string& handle) {
    SimOtherProgram* program = find(handle);
    if (program == nullptr || program->running) return false;
    program->running = true;
    program->hangs = false;
    program->application.isTerminated = false;
    program->application.pid = nextPid++;
    byPid[program->application.pid] = static_cast<std::size_t>(program - programs.data());
    trace.note("program", fmt::format("{} starts, pid {}", handle, program->application.pid));
    for (SimItemPlan& plan : program->items) show(*program, plan);
    return true;
}

bool SimApplications::kill(const std::string& handle) {
    SimOtherProgram* program = find(handle);
    if (program == nullptr || !program->running) return false;
    trace.note("program", fmt::format("{} ends, pid {}", handle, program->application.pid));
    program->running = false;
    program->application.isTerminated = true;
    for (SimItemPlan& plan : program->items) hide(plan);
    return true;
}

void SimApplications::addItem(const std::string& handle, SimItemPlan plan) {
    SimOtherProgram* program = find(handle);
    if (program == nullptr) return;
    program->items.push_back(std::move(plan));
    if (program->running) show(*program, program->items.back());
}

bool SimApplications::removeItem(const std::string& label) {
    for (SimOtherProgram& program : programs) {
        auto found = std::find_if(program.items.begin(), program.items.end(),
                                  [&](const SimItemPlan& plan) { return plan.label == label; });
        if (found == program.items.end()) continue;
        hide(*found);
        program.items.erase(found);
        return true;
    }
    return false;
}

bool SimApplications::resizeItem(const std::string& label, double width) {
    SimItemPlan* plan = findItem(label);
    if (plan == nullptr) return false;
    plan->width = width;
    bar.setLength(plan->window, width);
    return true;
}

SimOtherProgram* SimApplications::find(const std::string& handle) {
    for (SimOtherProgram& program : programs) {
        if (program.handle == handle) return &program;
    }
    return nullptr;
}

const SimOtherProgram* SimApplications::runningWithPid(ProcessId pid) const {
    auto found = byPid.find(pid);
    if (found == byPid.end()) return nullptr;
    const SimOtherProgram& program = programs[found->second];
    return program.running && program.application.pid == pid ? &program : nullptr;
}

const SimOtherProgram* SimApplications::runningWithBundle(const std::string& bundle) const {
    auto found = byBundle.find(bundle);
    if (found == byBundle.end()) return nullptr;
    for (std::size_t index : found->second) {
        if (programs[index].running) return &programs[index];
    }
    return nullptr;
}

SimItemPlan* SimApplications::findItem(const std::string& label) {
    for (SimOtherProgram& program : programs) {
        for (SimItemPlan& plan : program.items) {
            if (plan.label == label) return &plan;
        }
    }
    return nullptr;
}

void SimApplications::show(SimOtherProgram& program, SimItemPlan& plan) {
    const SimOtherProgram* owner = plan.windowOwner.empty() ? nullptr : find(plan.windowOwner);
    const RunningApplication& owning = (owner != nullptr ? *owner : program).application;
    SimWindow window;
    window.pid = owning.pid;
    window.ownerName = owning.localizedName.value_or("");
    window.name = plan.name;
    window.layer = plan.layer;
    window.inMenuBarList = true;
    plan.window = windows.create(window);
    SimBar::Item item;
    item.window = plan.window;
    item.label = plan.label;
    item.domain = program.application.bundleIdentifier;
    item.name = plan.name;
    item.length = plan.width;
    bar.insert(item);
}

void SimApplications::hide(SimItemPlan& plan) {
    if (plan.window == 0) return;
    bar.remove(plan.window);
    windows.destroy(plan.window);
    plan.window = 0;
}

}  // namespace nevo
