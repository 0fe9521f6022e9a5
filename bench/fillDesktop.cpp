#include "fillDesktop.h"

#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {
std::string handleOf(std::int64_t program) { return "Program" + std::to_string(program); }
}  // namespace

void fillDesktop(SimDesktop& desktop, std::int64_t programs) {
    for (std::int64_t i = 0; i < programs; ++i) {
        SimOtherProgram program;
        program.handle = handleOf(i);
        program.application.bundleIdentifier = bundleOf(i);
        program.application.localizedName = program.handle;
        SimItemPlan item;
        item.label = program.handle;
        program.items = {item};
        desktop.applications.add(program);
        desktop.applications.launch(program.handle);
    }
    desktop.loop.runFor(1);
}

std::string bundleOf(std::int64_t program) {
    return "org.example.program" + std::to_string(program);
}

std::string idOfItem(std::int64_t program) {
    return makePersistedID(handleOf(program), bundleOf(program));
}

}  // namespace nevo
