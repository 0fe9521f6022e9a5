#include "menubar/ClockFace.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <array>
#include <ctime>

namespace nevo::menubar {

namespace {
constexpr const char* timeFormat = "%a %e %b  %H:%M";

std::string currentText() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 100> text{};
    std::size_t length = std::strftime(text.data(), text.size(), timeFormat, &local);
    return {text.data(), length};
}
}  // namespace

bool ClockFace::update() {
    tzset();
    std::string text = currentText();
    if (text == shown) return false;
    face.draw(text, height);
    shown = text;
    return true;
}

int openMinuteTimer() {
    int descriptor = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (descriptor >= 0) armMinuteTimer(descriptor);
    return descriptor;
}

void armMinuteTimer(int descriptor) {
    std::uint64_t count = 0;
    [[maybe_unused]] auto taken = ::read(descriptor, &count, sizeof count);
    std::time_t now = std::time(nullptr);
    itimerspec next{};
    next.it_value.tv_sec = now - now % 60 + 60;
    timerfd_settime(descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &next, nullptr);
}

}  // namespace nevo::menubar
