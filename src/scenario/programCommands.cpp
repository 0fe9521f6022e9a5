#include "platform/sim/SimImages.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {

const std::vector<std::string> policies = {"regular", "accessory", "prohibited"};

Outcome nothingToDo(const std::string& handle, const char* state) {
    return Outcome::unreadable(handle + state);
}

Step readApp(LineReader& reader) {
    SimOtherProgram program;
    program.handle = reader.word("HANDLE");
    RunningApplication& application = program.application;
    application.bundleIdentifier = reader.word("BUNDLE-ID");
    application.localizedName = program.handle;
    application.icon = simImage({32, 32}, false, "icon:" + program.handle);
    application.activationPolicy = ActivationPolicy::accessory;
    bool starts = true;
    while (auto option = reader.takeOneOf(
               {"name", "policy", "no-name", "no-icon", "launching", "not-running"})) {
        if (*option == "name") application.localizedName = reader.word("name");
        if (*option == "no-name") application.localizedName.reset();
        if (*option == "no-icon") application.icon.reset();
        if (*option == "launching") application.isFinishedLaunching = false;
        if (*option == "not-running") starts = false;
        if (*option != "policy") continue;
        std::string policy = reader.choice("policy", policies);
        if (policy == "regular") application.activationPolicy = ActivationPolicy::regular;
        if (policy == "prohibited") application.activationPolicy = ActivationPolicy::prohibited;
    }
    return [program, starts](ScenarioRun& run) {
        if (run.desktop().applications.find(program.handle) != nullptr) {
            return nothingToDo(program.handle, " is known already");
        }
        run.desktop().applications.add(program);
        if (starts) run.desktop().workspace.launch(program.handle);
        return Outcome{};
    };
}

void readItemOption(LineReader& reader, const std::string& option, SimItemPlan& plan) {
    if (option == "name") plan.name = reader.word("name");
    if (option == "width") plan.width = reader.amount("width");
    if (option == "title") plan.title = reader.word("title");
    if (option == "description") plan.description = reader.word("description");
    if (option == "layer") plan.layer = reader.whole("layer");
    if (option == "window-of") plan.windowOwner = reader.word("window-of");
    if (option == "no-accessibility") plan.accessible = false;
}

Step readItem(LineReader& reader) {
    SimItemPlan plan;
    plan.label = reader.word("HANDLE");
    std::string handle = reader.word("APP");
    while (auto option = reader.takeOneOf({"name", "width", "title", "description", "layer",
                                           "window-of", "no-accessibility"})) {
        readItemOption(reader, *option, plan);
    }
    return withProgram(handle, [plan](ScenarioRun& run, SimOtherProgram& program) {
        SimApplications& all = run.desktop().applications;
        if (all.findItem(plan.label) != nullptr) {
            return nothingToDo(plan.label, " is an item already");
        }
        if (!plan.windowOwner.empty() && all.find(plan.windowOwner) == nullptr) {
            return Outcome::unreadable("there is no program \"" + plan.windowOwner + "\"");
        }
        all.addItem(program.handle, plan);
        return Outcome{};
    });
}

Step readRemoveItem(LineReader& reader) {
    std::string label = reader.word("ITEM");
    return [label](ScenarioRun& run) {
        if (run.desktop().applications.removeItem(label)) return Outcome{};
        return nothingToDo(label, " is no item of another program");
    };
}

Step readResizeItem(LineReader& reader) {
    std::string label = reader.word("ITEM");
    double width = reader.amount("WIDTH");
    return [label, width](ScenarioRun& run) {
        if (run.desktop().applications.resizeItem(label, width)) return Outcome{};
        return nothingToDo(label, " is no item of another program");
    };
}

Step readChild(LineReader& reader) {
    std::string handle = reader.word("APP");
    AccessibilityElement element;
    element.position = Point{reader.number("X"), 0};
    element.size = Size{reader.amount("WIDTH"), 24};
    if (reader.take("title")) element.title = reader.word("title");
    if (reader.take("description")) element.description = reader.word("description");
    return withProgram(handle, [element](ScenarioRun&, SimOtherProgram& program) {
        program.extraChildren.push_back(element);
        return Outcome{};
    });
}

Step readLaunch(LineReader& reader) {
    return withProgram(reader.word("APP"), [](ScenarioRun& run, SimOtherProgram& program) {
        if (run.desktop().workspace.launch(program.handle)) return Outcome{};
        return nothingToDo(program.handle, " is running already");
    });
}

Step readKill(LineReader& reader) {
    return withProgram(reader.word("APP"), [](ScenarioRun& run, SimOtherProgram& program) {
        if (run.desktop().workspace.kill(program.handle)) return Outcome{};
        return nothingToDo(program.handle, " isn't running");
    });
}

Step readHang(LineReader& reader) {
    std::string handle = reader.word("APP");
    bool hangs = !reader.take("no-more");
    return withProgram(handle, [hangs](ScenarioRun&, SimOtherProgram& program) {
        program.hangs = hangs;
        return Outcome{};
    });
}

Step readFinishLaunching(LineReader& reader) {
    return withProgram(reader.word("APP"), [](ScenarioRun&, SimOtherProgram& program) {
        program.application.isFinishedLaunching = true;
        return Outcome{};
    });
}

Step readActivate(LineReader& reader) {
    return withProgram(reader.word("APP"), [](ScenarioRun& run, SimOtherProgram& program) {
        bool done = program.running && run.desktop().workspace.activate(program.application.pid);
        return done ? Outcome{} : nothingToDo(program.handle, " isn't running");
    });
}

Step readWindow(LineReader& reader) {
    std::string label = reader.word("HANDLE");
    std::string handle = reader.word("APP");
    SimWindow window;
    window.name = label;
    Point origin = readPlace(reader);
    window.frame = {origin.x, origin.y, reader.amount("WIDTH"), 0};
    window.frame.height = reader.amount("HEIGHT");
    while (auto option = reader.takeOneOf({"layer", "name", "in-menu-bar-list"})) {
        if (*option == "layer") window.layer = reader.whole("layer");
        if (*option == "name") window.name = reader.word("name");
        if (*option == "in-menu-bar-list") window.inMenuBarList = true;
    }
    return withProgram(handle, [label, window](ScenarioRun& run, SimOtherProgram& program) {
        SimWindow made = window;
        made.pid = program.application.pid;
        made.ownerName = program.application.localizedName.value_or("");
        run.plainWindows[label] = run.desktop().windows.create(made);
        return Outcome{};
    });
}

Step readCloseWindow(LineReader& reader) {
    std::string label = reader.word("HANDLE");
    return [label](ScenarioRun& run) {
        auto found = run.plainWindows.find(label);
        if (found == run.plainWindows.end()) return nothingToDo(label, " is no window");
        run.desktop().windows.destroy(found->second);
        run.plainWindows.erase(found);
        return Outcome{};
    };
}

}  // namespace

std::vector<Command> programCommands() {
    return {
        {"app",
         "HANDLE BUNDLE-ID [name NAME|no-name] [policy regular|accessory|prohibited] "
         "[no-icon] [launching] [not-running]",
         "Makes a program known, and starts it unless it is not-running. Its name is the HANDLE "
         "and "
         "its policy accessory if nothing else is said; launching means that it hasn't finished "
         "starting.",
         readApp},
        {"item",
         "HANDLE APP [name NAME] [width POINTS] [title TEXT] [description TEXT] "
         "[layer NUMBER] [window-of APP] [no-accessibility]",
         "Gives a program a status item, shown whenever it runs. NAME, \"Item-0\" if not given, is "
         "what its place is saved by; title and description are what accessibility tells; with "
         "window-of the window server takes another program for the owner.",
         readItem},
        {"remove-item", "ITEM", "The program removes its status item for good.", readRemoveItem},
        {"resize-item", "ITEM POINTS", "The status item gets another width.", readResizeItem},
        {"accessibility-child", "APP X WIDTH [title TEXT] [description TEXT]",
         "Adds an element to what accessibility tells of a program, at X from the left.",
         readChild},
        {"launch", "APP",
         "Starts a program, with a new process and new windows; its items stand where they stood.",
         readLaunch},
        {"kill", "APP", "Ends a program; its items are gone.", readKill},
        {"hang", "APP [no-more]",
         "The program answers no accessibility question (no-more); its items stay.", readHang},
        {"finish-launching", "APP", "The program has finished starting.", readFinishLaunching},
        {"activate", "APP", "Brings a program to the front; Nevo is told.", readActivate},
        {"window", "HANDLE APP X Y WIDTH HEIGHT [layer NUMBER] [name NAME] [in-menu-bar-list]",
         "Opens an ordinary window of a program.", readWindow},
        {"close-window", "HANDLE", "Closes an ordinary window.", readCloseWindow},
    };
}

}  // namespace nevo
