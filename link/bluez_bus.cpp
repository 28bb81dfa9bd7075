#include "link/bluez_bus.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

namespace brivant::bluez {

namespace {
constexpr qsizetype longest_name = 80;
} // namespace

QDBusPendingCall ask(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments, int longest_ms) {
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.bluez"), path, interface, method);
    call.setArguments(arguments);
    return QDBusConnection::systemBus().asyncCall(call, longest_ms);
}

QDBusPendingCall ask_for_objects() {
    qDBusRegisterMetaType<bluez_interfaces>();
    qDBusRegisterMetaType<bluez_objects>();
    return ask(QStringLiteral("/"), object_manager, QStringLiteral("GetManagedObjects"));
}

bluetooth_condition condition_after(const QDBusError& error) {
    switch (error.type()) {
    case QDBusError::AccessDenied: return bluetooth_condition::no_access;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut: return bluetooth_condition::no_answer;
    default: return bluetooth_condition::no_service;
    }
}

bluetooth_surroundings radio_of(const bluez_objects& objects) {
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        if (!object->contains(adapter_interface))
            continue;
        const bool powered = object->value(adapter_interface).value(QStringLiteral("Powered")).toBool();
        return {powered ? bluetooth_condition::ready : bluetooth_condition::switched_off,
                object.key().path(),
                {}};
    }
    return {bluetooth_condition::no_adapter, {}, {}};
}

QVariantMap device_properties(const bluez_interfaces& interfaces, const QString& radio) {
    const QVariantMap properties = interfaces.value(device_interface);
    const QVariant of_radio = properties.value(QStringLiteral("Adapter"));
    return of_radio.value<QDBusObjectPath>().path() == radio ? properties : QVariantMap();
}

QString name_of(const QVariantMap& device) {
    const QString address = device.value(QStringLiteral("Address")).toString().toUpper();
    QString name = device.value(QStringLiteral("Alias")).toString().simplified();
    name.removeIf([](QChar c) { return !c.isPrint(); });
    // A device whose name has not arrived is called by its address with dashes.
    const bool has_none = name.isEmpty() || name == QString(address).replace(u':', u'-');
    return has_none ? address : name.left(longest_name);
}

} // namespace brivant::bluez
