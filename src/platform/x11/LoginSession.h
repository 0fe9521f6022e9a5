#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <string>

#include "platform/LogOutput.h"
#include "platform/NotificationCenter.h"

namespace nevo {

/// What logind tells on the system bus, as the workspace's notifications: the machine has woken
/// ("NSWorkspaceDidWakeNotification", "NSWorkspaceScreensDidWakeNotification"), and this login
/// session has come to the screen again or was unlocked
/// ("NSWorkspaceSessionDidBecomeActiveNotification"). Where there is no bus or no logind, nothing
/// is told, and the log says so once.
class LoginSession : public QObject {
    Q_OBJECT

public:
    LoginSession(NotificationCenter& center, LogOutput& output);
    ~LoginSession() override;

private Q_SLOTS:
    void onPrepareForSleep(bool begins);
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed);
    void onUnlock();

private:
    void begin();
    void findSession();
    void watchSession(const QString& path);
    void say(const std::string& text);

    NotificationCenter& notifications;
    LogOutput& log;
    QDBusConnection bus;
};

}  // namespace nevo
