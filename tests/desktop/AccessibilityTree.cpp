#include "desktop/AccessibilityTree.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

#include "desktop/Process.h"

namespace nevo::desktoptest {

namespace {

constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* accessibleInterface = "org.a11y.atspi.Accessible";
constexpr const char* registry = "org.a11y.atspi.Registry";
constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";

/// An object of a program on the bus.
struct Object {
    QString owner;
    QString path;
};

QDBusMessage call(const Object& object, const char* interface, const char* method,
                  const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(object.owner, object.path, interface, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage callForName(const Object& object) {
    return call(object, propertiesInterface, "Get", {accessibleInterface, "Name"});
}

/// Its first value; nothing from a program that has gone.
QVariant answer(const QDBusMessage& reply) {
    bool isThere = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty();
    QVariant value = isThere ? reply.arguments().first() : QVariant();
    return value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
}

std::vector<Object> objectsFrom(const QDBusArgument& list) {
    std::vector<Object> objects;
    for (list.beginArray(); !list.atEnd();) {
        Object object;
        QDBusObjectPath path;
        list.beginStructure();
        list >> object.owner >> path;
        list.endStructure();
        object.path = path.path();
        objects.push_back(object);
    }
    list.endArray();
    return objects;
}

std::vector<Object> objectsIn(const QDBusMessage& reply) {
    QVariant value = answer(reply);
    if (!value.canConvert<QDBusArgument>()) return {};
    return objectsFrom(value.value<QDBusArgument>());
}

/// The object that names another one, by the relations of that one.
std::optional<Object> labelIn(const QDBusMessage& reply) {
    constexpr quint32 labelledBy = 2;
    QVariant value = answer(reply);
    if (!value.canConvert<QDBusArgument>()) return std::nullopt;
    const auto list = value.value<QDBusArgument>();
    std::optional<Object> label;
    for (list.beginArray(); !list.atEnd();) {
        quint32 kind = 0;
        list.beginStructure();
        list >> kind;
        auto objects = objectsFrom(list);
        list.endStructure();
        if (kind == labelledBy && !objects.empty()) label = objects.front();
    }
    return label;
}

std::uint64_t statesIn(const QDBusMessage& reply) {
    auto words = qdbus_cast<QList<quint32>>(answer(reply));
    if (words.size() != 2) return 0;
    return words[0] | static_cast<std::uint64_t>(words[1]) << 32;
}

Rect placeIn(const QDBusMessage& reply) {
    QVariant value = answer(reply);
    if (!value.canConvert<QDBusArgument>()) return {};
    const auto numbers = value.value<QDBusArgument>();
    int x = 0, y = 0, width = 0, height = 0;
    numbers.beginStructure();
    numbers >> x >> y >> width >> height;
    numbers.endStructure();
    return {static_cast<double>(x), static_cast<double>(y), static_cast<double>(width),
            static_cast<double>(height)};
}

}  // namespace

/// One walk through the tree.
struct AccessibilityTree::Reading {
    const QDBusConnection& bus;
    std::vector<Accessible> found;

    void take(const Object& object, std::size_t parent) {
        constexpr unsigned onScreen = 0;
        auto ask = [&](const QDBusMessage& message) { return bus.asyncCall(message); };
        auto role = ask(call(object, accessibleInterface, "GetRoleName"));
        auto name = ask(callForName(object));
        auto relations = ask(call(object, accessibleInterface, "GetRelationSet"));
        auto states = ask(call(object, accessibleInterface, "GetState"));
        auto place = ask(call(object, "org.a11y.atspi.Component", "GetExtents", {onScreen}));
        auto inside = ask(call(object, accessibleInterface, "GetChildren"));
        for (auto* pending : {&role, &name, &relations, &states, &place, &inside}) {
            pending->waitForFinished();
        }
        Accessible part;
        part.states = statesIn(states.reply());
        if (!part.is(Accessible::showing)) return;
        auto label = labelIn(relations.reply());
        auto naming = label ? bus.call(callForName(*label)) : name.reply();
        part.parent = parent;
        part.role = answer(role.reply()).toString().toStdString();
        part.name = answer(naming).toString().toStdString();
        part.place = placeIn(place.reply());
        part.path = object.path;
        std::size_t own = found.size();
        found.push_back(std::move(part));
        for (const Object& child : objectsIn(inside.reply())) take(child, own);
    }
};

AccessibilityTree::AccessibilityTree(const std::string& sessionBus)
    : sessionName("accessibility-session"), busName("accessibility"), bus(busName) {
    auto session = QDBusConnection::connectToBus(QString::fromStdString(sessionBus), sessionName);
    const Object launcher{"org.a11y.Bus", "/org/a11y/bus"};
    session.call(call(launcher, propertiesInterface, "Set",
                      {"org.a11y.Status", "IsEnabled", QVariant::fromValue(QDBusVariant(true))}));
    auto address = answer(session.call(call(launcher, "org.a11y.Bus", "GetAddress"))).toString();
    bus = QDBusConnection::connectToBus(address, busName);
    if (!bus.isConnected()) throw Failed("the session has no accessibility bus");
}

AccessibilityTree::~AccessibilityTree() {
    QDBusConnection::disconnectFromBus(busName);
    QDBusConnection::disconnectFromBus(sessionName);
}

std::optional<QString> AccessibilityTree::nameOnBus(std::int64_t process) const {
    auto programs = bus.call(call({registry, rootPath}, accessibleInterface, "GetChildren"));
    for (const Object& program : objectsIn(programs)) {
        if (bus.interface()->servicePid(program.owner) == process) return program.owner;
    }
    return std::nullopt;
}

std::vector<Accessible> AccessibilityTree::read(std::int64_t process) const {
    auto owner = nameOnBus(process);
    Reading reading{bus, {}};
    if (!owner) return {};
    auto windows = bus.call(call({*owner, rootPath}, accessibleInterface, "GetChildren"));
    for (const Object& window : objectsIn(windows)) reading.take(window, reading.found.size());
    return reading.found;
}

}  // namespace nevo::desktoptest
