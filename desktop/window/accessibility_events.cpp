#include "desktop/window/accessibility_events.h"

#include "desktop/window/accessibility_bus.h"

#include <QAccessible>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

// A node, as the bus names it.
struct AccessibleReference {
    QString connection;
    QDBusObjectPath path;
};
Q_DECLARE_METATYPE(AccessibleReference)

static QDBusArgument& operator<<(QDBusArgument& argument, const AccessibleReference& reference) {
    argument.beginStructure();
    argument << reference.connection << reference.path;
    argument.endStructure();
    return argument;
}

static const QDBusArgument& operator>>(const QDBusArgument& argument, AccessibleReference& reference) {
    argument.beginStructure();
    argument >> reference.connection >> reference.path;
    argument.endStructure();
    return argument; // NOLINT(bugprone-return-const-ref-from-parameter): the toolkit wants it so
}

namespace {

QDBusConnection toolkitsConnection() { return QDBusConnection(QLatin1String(seat::toolkitsAccessibilityConnection)); }

// As the toolkit names its nodes.
QString pathOf(QAccessibleInterface& node) {
    return QLatin1String("/org/a11y/atspi/accessible/") + QString::number(QAccessible::uniqueId(&node));
}

// Arguments as every event of an object has them: a detail, two numbers, a value, and properties, which nobody needs.
void sendObjectEvent(QAccessibleInterface& node, const QString& event, const QString& detail, int number,
                     const QVariant& value) {
    const QDBusConnection connection = toolkitsConnection();
    if (!connection.isConnected()) return;
    QDBusMessage message =
        QDBusMessage::createSignal(pathOf(node), QLatin1String("org.a11y.atspi.Event.Object"), event);
    message.setArguments({detail, number, 0, QVariant::fromValue(QDBusVariant(value)), QVariantMap()});
    connection.send(message);
}

} // namespace

void seat::announce(QAccessibleInterface& node, const QString& text, Announcement kind) {
    if (!text.isEmpty()) sendObjectEvent(node, QLatin1String("Announcement"), QString(), static_cast<int>(kind), text);
}

void seat::tellOfChild(QAccessibleInterface& parent, QAccessibleInterface& child, ChildEvent event, int place) {
    static const bool isRegistered = (qDBusRegisterMetaType<AccessibleReference>(), true);
    (void)isRegistered;
    const AccessibleReference reference{toolkitsConnection().baseService(), QDBusObjectPath(pathOf(child))};
    sendObjectEvent(parent, QLatin1String("ChildrenChanged"),
                    QLatin1String(event == ChildEvent::Added ? "add" : "remove"), place,
                    QVariant::fromValue(reference));
}

void seat::tellState(QAccessibleInterface& node, const char* state, bool has) {
    sendObjectEvent(node, QLatin1String("StateChanged"), QLatin1String(state), has ? 1 : 0, 0);
}
