#pragma once

#include <functional>
#include <utility>

namespace nevo {

/// Something that goes on until it is let go of: a timer, an observer, an event monitor. Destroying
/// or resetting the registration removes it; an empty one means that it is gone. Safe to destroy
/// from inside its own callback.
class [[nodiscard]] Registration {
public:
    Registration() = default;
    /// `onRemove` is called once, when the registration is reset or destroyed.
    explicit Registration(std::function<void()> onRemove) : remove(std::move(onRemove)) {}
    Registration(Registration&& other) noexcept : remove(std::exchange(other.remove, nullptr)) {}
    Registration& operator=(Registration&& other) noexcept {
        if (this != &other) {
            reset();
            remove = std::exchange(other.remove, nullptr);
        }
        return *this;
    }
    ~Registration() { reset(); }

    explicit operator bool() const { return remove != nullptr; }

    void reset() {
        if (auto call = std::exchange(remove, nullptr)) call();
    }

private:
    std::function<void()> remove;
};

}  // namespace nevo
