#include "platform/x11/DesktopNotice.h"

#include <systemd/sd-bus.h>

#include <QString>
#include <memory>

namespace nevo {

namespace {
constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* path = "/org/freedesktop/Notifications";
constexpr const char* icon = "com.nevoapp.Nevo";
/// Whoever shows notifications may have to be started for it.
constexpr std::uint64_t answerMicroseconds = 5'000'000;
constexpr int timeAsTheDesktopHasIt = -1;

struct BusCloser {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
}  // namespace

// Not by Qt's bus: its thread, with an answer that comes late, outlives what it needs when the
// program ends at once.
void showDesktopNotice(const std::string& sentence) {
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0) return;
    std::unique_ptr<sd_bus, BusCloser> bus(opened);
    sd_bus_set_method_call_timeout(bus.get(), answerMicroseconds);
    std::string body = QString::fromStdString(sentence).toHtmlEscaped().toStdString();
    sd_bus_call_method(bus.get(), service, path, service, "Notify", nullptr, nullptr,
                       "susssasa{sv}i", "Nevo", 0U, icon, "Nevo", body.c_str(), 0U, 0U,
                       timeAsTheDesktopHasIt);
}

}  // namespace nevo
