#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace nevo::desktoptest {

/// A program inside the test that offers a status item on the bus (`org.kde.StatusNotifierItem`),
/// and keeps what is done to it. Lives beside a QCoreApplication whose events somebody processes.
class FakeNotifier : public QDBusVirtualObject {
public:
    static constexpr const char* path = "/StatusNotifierItem";

    explicit FakeNotifier(const std::string& busAddress);
    ~FakeNotifier() override;

    QVariantMap properties{{"Id", "fake"}, {"Status", "Active"}};
    /// A picture of one colour, 0xRRGGBB, as the value of a property.
    static QVariant pixmap(std::uint32_t color);
    /// Methods that it doesn't know.
    std::set<std::string> unknown;
    /// "Scroll 120 vertical" and so on, in the order in which they came.
    std::vector<std::string> calls;

    /// To the watcher, which has to be there.
    void enroll();
    /// Sends a signal of the protocol.
    void say(const char* signal);

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QDBusConnection bus;
};

}  // namespace nevo::desktoptest
