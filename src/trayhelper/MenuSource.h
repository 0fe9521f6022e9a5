#pragma once

#include <QBasicTimer>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>
#include <functional>
#include <optional>

#include "trayhelper/MenuLayout.h"

namespace nevo::trayhelper {

/// A menu that another program offers on the session bus (`com.canonical.dbusmenu`). Nobody ever
/// waits for it: answers come through the event loop, or don't.
class MenuSource : public QObject {
    Q_OBJECT

public:
    MenuSource(const QDBusConnection& sessionBus, const QString& serviceName,
               const QString& objectPath);

    /// Asks for the rows below `id`, after saying that they are about to be shown if `isNew`. Calls
    /// `done` once, with nothing when no answer has come in 3 s or it is none; never when
    /// `receiver` has gone by then.
    using Done = std::function<void(const std::optional<MenuRows>&)>;
    void load(int id, bool isNew, QObject* receiver, const Done& done);

    /// Tells the program what has happened to the row: "clicked", "opened", "closed".
    void tell(int id, const QString& event);
    /// Calls `done` when the program has heard all that it was told, or has had a second to.
    void whenAllIsTold(const std::function<void()>& done);

    /// The display's time of the last click or key, for what the program may open now.
    quint32 inputTime = 0;

Q_SIGNALS:
    /// Rows may have changed; told once for many changes.
    void changed();
    /// The program has ended.
    void gone();

private Q_SLOTS:
    void noteChange(const QDBusMessage& signal);

private:
    void timerEvent(QTimerEvent* event) override;
    QDBusMessage call(const char* method) const;
    void askForRows(int id, QObject* receiver, const Done& done);
    void noteTold();

    QDBusConnection bus;
    QString service;
    QString path;
    QBasicTimer pause;
    int untold = 0;
    std::function<void()> allTold;
};

}  // namespace nevo::trayhelper
