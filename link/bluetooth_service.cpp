#include "link/bluetooth_service.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <algorithm>
#include <tuple>

namespace brivant {

using bluez_interfaces = QMap<QString, QVariantMap>;
using bluez_objects = QMap<QDBusObjectPath, bluez_interfaces>;
} // namespace brivant

Q_DECLARE_METATYPE(brivant::bluez_interfaces)
Q_DECLARE_METATYPE(brivant::bluez_objects)

namespace brivant {

namespace {

constexpr int answer_ms = 5000;
constexpr qsizetype longest_name = 80;
constexpr qsizetype most_devices = 200;

const QString bluez = QStringLiteral("org.bluez");
const QString adapter_interface = QStringLiteral("org.bluez.Adapter1");
const QString device_interface = QStringLiteral("org.bluez.Device1");
const QString serial_port_uuid = QStringLiteral("00001101-0000-1000-8000-00805f9b34fb");

bluetooth_condition condition_after(const QDBusError& error) {
    switch (error.type()) {
    case QDBusError::AccessDenied: return bluetooth_condition::no_access;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut: return bluetooth_condition::no_answer;
    default: return bluetooth_condition::no_service;
    }
}

// A name comes from the air: one line, of bounded length.
QString clean(QString name) {
    name = name.simplified();
    name.removeIf([](QChar c) { return !c.isPrint(); });
    return name.left(longest_name);
}

bluetooth_device device_of(const QVariantMap& properties) {
    bluetooth_device device;
    device.address = properties.value(QStringLiteral("Address")).toString().toUpper();
    device.name = clean(properties.value(QStringLiteral("Alias")).toString());
    // A device whose name has not arrived is called by its address with dashes.
    if (device.name.isEmpty() || device.name == QString(device.address).replace(u':', u'-'))
        device.name = device.address;
    device.paired = properties.value(QStringLiteral("Paired")).toBool();
    const QStringList services = properties.value(QStringLiteral("UUIDs")).toStringList();
    device.knows_services = !services.isEmpty();
    device.serial_port = services.contains(serial_port_uuid, Qt::CaseInsensitive);
    return device;
}

// A random address belongs to a device of Bluetooth Low Energy only, which has no serial port.
bool may_have_serial_port(const QVariantMap& properties) {
    return properties.value(QStringLiteral("AddressType")).toString() != QLatin1String("random") &&
           is_bluetooth_address(properties.value(QStringLiteral("Address")).toString());
}

int rank_of(const bluetooth_device& device) {
    if (device.paired)
        return device.serial_port ? 0 : 2;
    return 1;
}

bluetooth_surroundings surroundings_of(const bluez_objects& objects) {
    bluetooth_surroundings found{bluetooth_condition::no_adapter, {}, {}};
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        if (!object->contains(adapter_interface) || !found.adapter.isEmpty())
            continue;
        const bool powered = object->value(adapter_interface).value(QStringLiteral("Powered")).toBool();
        found.condition = powered ? bluetooth_condition::ready : bluetooth_condition::switched_off;
        found.adapter = object.key().path();
    }
    for (const bluez_interfaces& interfaces : objects) {
        const QVariantMap properties = interfaces.value(device_interface);
        const QString of_adapter =
            properties.value(QStringLiteral("Adapter")).value<QDBusObjectPath>().path();
        if (of_adapter == found.adapter && may_have_serial_port(properties) &&
            found.devices.size() < most_devices)
            found.devices += device_of(properties);
    }
    std::sort(found.devices.begin(), found.devices.end(),
              [](const bluetooth_device& one, const bluetooth_device& other) {
                  return std::tuple(rank_of(one), one.name.toCaseFolded(), one.address) <
                         std::tuple(rank_of(other), other.name.toCaseFolded(), other.address);
              });
    return found;
}

QDBusPendingCall ask_bluez(const QString& path, const QString& interface, const QString& method,
                           const QVariantList& arguments = {}) {
    QDBusMessage call = QDBusMessage::createMethodCall(bluez, path, interface, method);
    call.setArguments(arguments);
    return QDBusConnection::systemBus().asyncCall(call, answer_ms);
}

QDBusPendingCall ask_adapter(const QString& adapter, const QString& method,
                             const QVariantList& arguments = {}) {
    return ask_bluez(adapter, adapter_interface, method, arguments);
}

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

} // namespace

void bluetooth_service::look(std::function<void(const bluetooth_surroundings&)> tell) {
    qDBusRegisterMetaType<bluez_interfaces>();
    qDBusRegisterMetaType<bluez_objects>();
    const auto call = ask_bluez(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.ObjectManager"),
                                QStringLiteral("GetManagedObjects"));
    when_answered(this, call, [tell](const QDBusPendingCall& answered) {
        const QDBusPendingReply<bluez_objects> reply = answered;
        tell(reply.isError() ? bluetooth_surroundings{condition_after(reply.error()), {}, {}}
                             : surroundings_of(reply.value()));
    });
}

void bluetooth_service::start_discovery(const QString& adapter, std::function<void(const QString&)> tell) {
    // Devices of the classic kind only; where that cannot be had, all of them will do.
    ask_adapter(adapter, QStringLiteral("SetDiscoveryFilter"),
                {QVariantMap{{QStringLiteral("Transport"), QStringLiteral("bredr")}}});
    when_answered(this, ask_adapter(adapter, QStringLiteral("StartDiscovery")),
                  [tell](const QDBusPendingCall& answered) {
                      const QDBusPendingReply<> reply = answered;
                      const bool runs = !reply.isError() ||
                                        reply.error().name() == QLatin1String("org.bluez.Error.InProgress");
                      tell(runs ? QString() : reply.error().message());
                  });
}

void bluetooth_service::stop_discovery(const QString& adapter) {
    ask_adapter(adapter, QStringLiteral("StopDiscovery"));
}

QString why_unusable(bluetooth_condition condition) {
    switch (condition) {
    case bluetooth_condition::no_service:
        return QStringLiteral(
            "The Bluetooth service is not running. Start it (as root: systemctl enable --now "
            "bluetooth); where it is missing, install the package bluez.");
    case bluetooth_condition::no_access:
        return QStringLiteral(
            "This program may not talk to the Bluetooth service. A sandboxed package needs the "
            "right to use org.bluez on the system bus.");
    case bluetooth_condition::no_answer:
        return QStringLiteral("The Bluetooth service does not answer. Restart it (as root: systemctl restart "
                              "bluetooth).");
    case bluetooth_condition::no_adapter:
        return QStringLiteral(
            "This computer has no Bluetooth, or it is not recognised. Plug in a Bluetooth stick, "
            "or choose Wi-Fi in the preferences.");
    case bluetooth_condition::switched_off:
        return QStringLiteral("Bluetooth is switched off. Switch it on in the system's settings.");
    default: return {};
    }
}

QString pairing_advice() {
    return QStringLiteral("Pair it in the system's Bluetooth settings (PIN usually 1234 or 0000)");
}

} // namespace brivant
