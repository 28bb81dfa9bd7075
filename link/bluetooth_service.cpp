#include "link/bluetooth_service.h"

#include "link/bluez_bus.h"
#include "link/gatt_services.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <algorithm>
#include <array>
#include <tuple>

namespace brivant {

namespace {

constexpr qsizetype most_devices = 200;

const QString serial_port_uuid = QStringLiteral("00001101-0000-1000-8000-00805f9b34fb");

// How adapters on the market call themselves, or begin to.
constexpr std::array adapter_names{"OBD",     "ELM327", "V-LINK",  "Vlink",  "IOS-Vlink", "Android-Vlink",
                                   "vLinker", "Vgate",  "VEEPEAK", "LELink", "KONNWEI",   "UniCarScan"};

bool is_adapter_name(const QString& name) {
    return std::any_of(adapter_names.begin(), adapter_names.end(), [&](const char* known) {
        return name.startsWith(QLatin1String(known), Qt::CaseInsensitive);
    });
}

// Bluetooth LE is chosen where the serial port of classic Bluetooth cannot be had: a random address belongs
// to a device of the former only, and one of the latter tells its class.
bool is_le_device(const bluetooth_device& device, const QVariantMap& properties, bool has_le_service) {
    if (properties.value(QStringLiteral("AddressType")).toString() == QLatin1String("random"))
        return true;
    return !device.serial_port &&
           (has_le_service || (!device.paired && !properties.contains(QStringLiteral("Class"))));
}

bluetooth_device device_of(const QVariantMap& properties) {
    bluetooth_device device;
    device.address = properties.value(QStringLiteral("Address")).toString().toUpper();
    device.name = bluez::name_of(properties);
    device.paired = properties.value(QStringLiteral("Paired")).toBool();
    const QStringList services = properties.value(QStringLiteral("UUIDs")).toStringList();
    device.knows_services = !services.isEmpty();
    device.serial_port = services.contains(serial_port_uuid, Qt::CaseInsensitive);
    const bool has_le_service = std::any_of(services.begin(), services.end(), is_adapter_service);
    device.is_le = is_le_device(device, properties, has_le_service);
    device.may_be_adapter = device.serial_port || has_le_service || is_adapter_name(device.name);
    return device;
}

// Beacons, watches and phones that tell neither a name nor a service are too many, and nobody could choose
// between them.
bool can_be_told_apart(const bluetooth_device& device) {
    return is_bluetooth_address(device.address) &&
           (!device.is_le || device.may_be_adapter || device.name != device.address);
}

int rank_of(const bluetooth_device& device) {
    if (device.paired && device.serial_port)
        return 0;
    if (device.may_be_adapter)
        return 1;
    return device.paired ? 3 : 2;
}

bluetooth_surroundings surroundings_of(const bluez_objects& objects) {
    bluetooth_surroundings found = bluez::radio_of(objects);
    for (const bluez_interfaces& interfaces : objects) {
        const QVariantMap properties = bluez::device_properties(interfaces, found.adapter);
        if (const bluetooth_device device = device_of(properties); can_be_told_apart(device))
            found.devices += device;
    }
    std::sort(found.devices.begin(), found.devices.end(),
              [](const bluetooth_device& one, const bluetooth_device& other) {
                  return std::tuple(rank_of(one), one.name.toCaseFolded(), one.address) <
                         std::tuple(rank_of(other), other.name.toCaseFolded(), other.address);
              });
    if (found.devices.size() > most_devices)
        found.devices.resize(most_devices);
    return found;
}

QString word_for(bluetooth_service::kind_of_device kind) {
    return kind == bluetooth_service::kind_of_device::le ? QStringLiteral("le") : QStringLiteral("auto");
}

} // namespace

void bluetooth_service::look(std::function<void(const bluetooth_surroundings&)> tell) {
    when_answered(this, bluez::ask_for_objects(), [tell](const QDBusPendingCall& answered) {
        const QDBusPendingReply<bluez_objects> reply = answered;
        tell(reply.isError() ? bluetooth_surroundings{bluez::condition_after(reply.error()), {}, {}}
                             : surroundings_of(reply.value()));
    });
}

void bluetooth_service::start_discovery(const QString& adapter, std::function<void(const QString&)> tell,
                                        kind_of_device kind) {
    // Where the kind cannot be had, what it finds by itself will do.
    bluez::ask(adapter, bluez::adapter_interface, QStringLiteral("SetDiscoveryFilter"),
               {QVariantMap{{QStringLiteral("Transport"), word_for(kind)}}});
    when_answered(this, bluez::ask(adapter, bluez::adapter_interface, QStringLiteral("StartDiscovery")),
                  [tell](const QDBusPendingCall& answered) {
                      const QDBusPendingReply<> reply = answered;
                      const bool runs = !reply.isError() ||
                                        reply.error().name() == QLatin1String("org.bluez.Error.InProgress");
                      tell(runs ? QString() : reply.error().message());
                  });
}

void bluetooth_service::stop_discovery(const QString& adapter) {
    bluez::ask(adapter, bluez::adapter_interface, QStringLiteral("StopDiscovery"));
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
