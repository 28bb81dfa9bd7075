#pragma once

#include "link/bluetooth_service.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QVariantMap>

namespace brivant {

// BlueZ on the system bus, as it is spoken to. No call waits.

using bluez_interfaces = QMap<QString, QVariantMap>;
using bluez_objects = QMap<QDBusObjectPath, bluez_interfaces>;

namespace bluez {
inline const QString adapter_interface = QStringLiteral("org.bluez.Adapter1");
inline const QString device_interface = QStringLiteral("org.bluez.Device1");
inline const QString service_interface = QStringLiteral("org.bluez.GattService1");
inline const QString characteristic_interface = QStringLiteral("org.bluez.GattCharacteristic1");
inline const QString properties_interface = QStringLiteral("org.freedesktop.DBus.Properties");
inline const QString object_manager = QStringLiteral("org.freedesktop.DBus.ObjectManager");

inline constexpr int answer_ms = 5000;

QDBusPendingCall ask(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments = {}, int longest_ms = answer_ms);
// Everything that it knows, as bluez_objects.
QDBusPendingCall ask_for_objects();
bluetooth_condition condition_after(const QDBusError& error);
// The radio and what it is good for; the devices are left out.
bluetooth_surroundings radio_of(const bluez_objects& objects);
// "Paired", "Address" ... of a device; empty where the object is none, or one of another radio.
QVariantMap device_properties(const bluez_interfaces& interfaces, const QString& radio);
// What a device is called. A name comes from the air: it is one line of bounded length, else the address.
QString name_of(const QVariantMap& device);
} // namespace bluez

// Calls `tell` with the answer, never at once and not after `owner` is gone.
template <typename function>
void when_answered(QObject* owner, const QDBusPendingCall& call, function tell) {
    if (call.isFinished()) { // there is no bus
        QMetaObject::invokeMethod(
            owner, [call, tell] { tell(call); }, Qt::QueuedConnection);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(call, owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner, [watcher, tell] {
        watcher->deleteLater();
        tell(*watcher);
    });
}

} // namespace brivant

Q_DECLARE_METATYPE(brivant::bluez_interfaces)
Q_DECLARE_METATYPE(brivant::bluez_objects)
