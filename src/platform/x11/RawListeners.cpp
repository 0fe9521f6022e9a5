#include "platform/x11/RawListeners.h"

#include <algorithm>
#include <map>

namespace nevo {

struct RawListeners::State {
    struct Listener {
        EventMask mask = 0;
        std::function<void(const Event&)> handler;
        bool isTap = false;
        bool isEnabled = true;
        bool isOnRunLoop = true;

        bool hears() const { return isEnabled && isOnRunLoop; }
        bool hears(EventType type, bool asTap) const {
            return isTap == asTap && hears() && (mask & maskOf(type)) != 0;
        }
    };

    /// After each change of who hears.
    void update() {
        if (input == nullptr) return;
        input->setListening(std::any_of(listeners.begin(), listeners.end(),
                                        [](const auto& each) { return each.second.hears(); }));
    }

    std::size_t add(Listener listener) {
        listeners.emplace(++last, std::move(listener));
        update();
        return last;
    }

    void remove(std::size_t id) {
        listeners.erase(id);
        update();
    }

    void tell(const Event& event, bool taps) {
        // Listeners come and go meanwhile: each is looked up again.
        for (std::size_t id = 1, end = last; id <= end; ++id) {
            auto found = listeners.find(id);
            if (found == listeners.end() || !found->second.hears(event.type, taps)) continue;
            auto handler = found->second.handler;
            handler(event);
        }
    }

    RawInput* input = nullptr;
    std::map<std::size_t, Listener> listeners;
    std::size_t last = 0;
};

class RawListeners::OwnedTap : public EventTap {
public:
    OwnedTap(std::shared_ptr<State> all, std::size_t number) : state(std::move(all)), id(number) {}
    ~OwnedTap() override { state->remove(id); }
    OwnedTap(const OwnedTap&) = delete;
    OwnedTap& operator=(const OwnedTap&) = delete;

    void setEnabled(bool enabled) override {
        state->listeners.at(id).isEnabled = enabled;
        state->update();
    }

    Registration addToMainRunLoop() override {
        state->listeners.at(id).isOnRunLoop = true;
        state->update();
        return Registration([weak = std::weak_ptr(state), number = id] {
            auto held = weak.lock();
            auto found = held ? held->listeners.find(number) : decltype(held->listeners.end()){};
            if (!held || found == held->listeners.end()) return;
            found->second.isOnRunLoop = false;
            held->update();
        });
    }

private:
    std::shared_ptr<State> state;
    std::size_t id;
};

RawListeners::RawListeners(RawInput& input) : state(std::make_shared<State>()) {
    state->input = &input;
}

RawListeners::~RawListeners() { state->input = nullptr; }

Registration RawListeners::addMonitor(EventMask mask, std::function<void(const Event&)> handler) {
    std::size_t id = state->add({mask, std::move(handler)});
    return Registration([weak = std::weak_ptr(state), id] {
        if (auto held = weak.lock()) held->remove(id);
    });
}

std::unique_ptr<EventTap> RawListeners::createTap(EventMask mask,
                                                  std::function<void(const Event&)> callback) {
    std::size_t id = state->add({mask, std::move(callback), true, false, false});
    return std::make_unique<OwnedTap>(state, id);
}

bool RawListeners::isWantedByMonitors(EventType type) const {
    return std::any_of(state->listeners.begin(), state->listeners.end(),
                       [&](const auto& each) { return each.second.hears(type, false); });
}

void RawListeners::tellMonitors(const Event& event) {
    auto held = state;
    held->tell(event, false);
}

void RawListeners::tellTaps(const Event& event) {
    auto held = state;
    held->tell(event, true);
}

}  // namespace nevo
