#pragma once

#include <algorithm>

#include "desktop/ContractSessions.h"
#include "platform/menubar/BarProtocol.h"

namespace nevo::desktoptest {

/// What both desktops must do alike. Three items from left to right: another program's, one of our
/// own that is 20 wide, and again another program's.
template <class Session>
class Contract : public Session {
protected:
    void SetUp() override {
        Session::SetUp();
        show("right");
        own = this->platform().statusBar.statusItem(ownWidth);
        own->setAutosaveName("Contract_Item");
        ASSERT_TRUE(this->comesToStand({"own", "right"}));
        show("left");
        ASSERT_TRUE(comesToStand({"left", "own", "right"}));
        left = frame("left");
        right = frame("right");
    }

    void TearDown() override {
        own.reset();
        natives.clear();
        Session::TearDown();
    }

    WindowServer& windows() { return this->platform().windows; }

    void show(const std::string& label) {
        pids[label] = this->showItem(label);
        ASSERT_TRUE(this->soon([&] { return frame(label).width > 0; })) << label;
        storedAt[label] = this->placeKey(label);
    }

    /// One more item of our own, at that stored position.
    StatusItem& showNative(const std::string& name, double length, double position) {
        auto& store = this->platform().defaults.standard();
        store.set(barprotocol::preferredPositionPrefix + name, position);
        store.synchronize();
        natives[name] = this->platform().statusBar.statusItem(length);
        natives[name]->setAutosaveName(name);
        return *natives[name];
    }

    /// What the domain of an item of another program holds, also of one that has ended.
    std::optional<double> stored(const std::string& label) {
        auto domain = this->platform().defaults.suite(storedAt.at(label).domain);
        domain->synchronize();
        auto value = domain->object(barprotocol::preferredPositionPrefix + storedAt.at(label).name);
        return value ? std::optional(std::get<double>(*value)) : std::nullopt;
    }
    void store(const std::string& label, double position) {
        auto domain = this->platform().defaults.suite(storedAt.at(label).domain);
        domain->set(barprotocol::preferredPositionPrefix + storedAt.at(label).name, position);
        domain->synchronize();
    }
    testing::AssertionResult storesSoon(const std::string& label, double expected) {
        if (this->soon([&] { return stored(label) == expected; })) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure()
               << label << " has " << testing::PrintToString(stored(label));
    }

    WindowNumber number(const std::string& label) {
        if (label == "own") return own->button()->windowNumber().value_or(0);
        if (auto native = natives.find(label); native != natives.end())
            return native->second->button()->windowNumber().value_or(0);
        for (WindowNumber window : listed()) {
            auto description = windows().windowDescription(window);
            if (description && description->ownerPid == pids[label]) return window;
        }
        return 0;
    }

    std::vector<WindowNumber> listed() {
        return windows().menuBarWindowList(100).value_or(std::vector<WindowNumber>());
    }

    Rect frame(const std::string& label) {
        return windows().windowFrame(number(label)).value_or(Rect());
    }

    /// By their places, left to right.
    Names row() {
        Names names;
        for (const auto& [label, pid] : pids) names.push_back(label);
        for (const auto& [label, native] : natives) names.push_back(label);
        names.push_back("own");
        std::erase_if(names, [this](const auto& label) { return number(label) == 0; });
        std::sort(names.begin(), names.end(), [this](const auto& a, const auto& b) {
            return frame(a).midX() < frame(b).midX();
        });
        return names;
    }

    /// Whether these items soon stand in that order, side by side and nobody else with them.
    testing::AssertionResult comesToStand(const Names& expected) {
        bool stands = this->soon([&] {
            bool sideBySide = true;
            for (std::size_t i = 1; i < expected.size(); ++i) {
                sideBySide = sideBySide && frame(expected[i - 1]).maxX() == frame(expected[i]).x;
            }
            return sideBySide && row() == expected;
        });
        if (stands) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "stands as " << testing::PrintToString(row());
    }

    /// A drag by the program of a window that it names, from a place where that window may not be.
    void dragNamed(
        const std::string& label, Point from, Point to,
        const std::function<void()>& onTheWay = [] {}) {
        Platform on = this->platform();
        auto source = on.events.createEventSource();
        ASSERT_TRUE(source);
        Point middle{(from.x + to.x) / 2, to.y};
        for (auto [type, place] : {std::pair{EventType::leftMouseDown, from},
                                   {EventType::leftMouseDragged, middle},
                                   {EventType::leftMouseDragged, to},
                                   {EventType::leftMouseUp, to}}) {
            auto event = on.events.createMouseEvent(*source, type, place);
            ASSERT_TRUE(event);
            event->flags = commandModifier;
            event->fields[EventField::windowNumber] = number(label);
            on.events.post(*event);
            on.runLoop.blockFor(0.02);
            if (type != EventType::leftMouseUp) onTheWay();
        }
    }

    static constexpr double ownWidth = 20;
    std::unique_ptr<StatusItem> own;
    std::map<std::string, std::unique_ptr<StatusItem>> natives;
    std::map<std::string, ProcessId> pids;
    std::map<std::string, PlaceKey> storedAt;
    Rect left;
    Rect right;
};

using Desktops = testing::Types<SimSession, X11Session>;

}  // namespace nevo::desktoptest
