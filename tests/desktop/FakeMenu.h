#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>
#include <map>
#include <string>
#include <vector>

namespace nevo::desktoptest {

/// A program inside the test that offers a menu on the bus (`com.canonical.dbusmenu`), and keeps
/// what it hears of it. Lives beside a QCoreApplication whose events somebody processes.
class FakeMenu : public QDBusVirtualObject {
public:
    struct Row {
        int id;
        QVariantMap properties;
    };
    static constexpr const char* path = "/Menu";

    explicit FakeMenu(const std::string& busAddress);
    ~FakeMenu() override { leave(); }

    /// Its own name on the bus, also after it has left.
    const std::string& name() const { return ownName; }

    /// The rows of each level, by the id of the row that they hang on; 0 for the first.
    std::map<int, std::vector<Row>> levels;
    /// "opened 0", "clicked 5" and so on, in the order in which they came.
    std::vector<std::string> events;
    /// The display's time of the last choice.
    unsigned clickTime = 0;
    /// How often the rows of a level have been asked for, after the program had been told that they
    /// are to be shown.
    std::map<int, int> shown;
    /// How often rows have been asked for at all.
    int asked = 0;
    /// Which level's rows nobody gets for now; -1 for none.
    int held = -1;

    /// Gives the rows that were held.
    void release();
    void sayThatRowsChanged();
    /// Ends, as far as the bus can tell.
    void leave();

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void sendRows(const QDBusMessage& question);

    QDBusConnection bus;
    std::string ownName;
    int announced = -1;
    std::vector<QDBusMessage> waiting;
};

}  // namespace nevo::desktoptest
