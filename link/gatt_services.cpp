#include "link/gatt_services.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace brivant {

namespace {

// A command or a notification spends three bytes of its packet on itself.
constexpr int packet_head = 3;

// Four digits stand for the UUID that the Bluetooth SIG has given them.
struct adapter_service {
    const char* service;
    const char* notifies;
    const char* written;
};
constexpr std::array<adapter_service, 6> table{{
    {"fff0", "fff1", "fff2"}, // most adapters
    {"ffe0", "ffe1", "ffe1"}, // serial modules HM-10 and their like
    {"18f0", "2af0", "2af1"},
    // Nordic UART
    {"6e400001-b5a3-f393-e0a9-e50e24dcca9e", "6e400003-b5a3-f393-e0a9-e50e24dcca9e",
     "6e400002-b5a3-f393-e0a9-e50e24dcca9e"},
    // Microchip, once ISSC: transparent UART
    {"49535343-fe7d-4ae5-8fa9-9fafd205e455", "49535343-1e4d-4bd9-ba61-23c647249616",
     "49535343-8841-43f4-a8d4-ecbe34729bb3"},
    // beside 18F0 on adapters that call themselves IOS-Vlink
    {"e7810a71-73ae-499d-8c15-faa9aef0c3f2", "bef8d6c9-9c21-4c9e-b632-bd58c1009f9f",
     "bef8d6c9-9c21-4c9e-b632-bd58c1009f9f"},
}};

bool is_uuid(const QString& whole, const char* known) {
    const QString digits = QLatin1String(known);
    return whole.compare(digits.size() == 4 ? QStringLiteral("0000%1-0000-1000-8000-00805f9b34fb").arg(digits)
                                            : digits,
                         Qt::CaseInsensitive) == 0;
}

struct characteristic {
    QString path;
    QStringList flags;
    int mtu = 0; // 0: the Bluetooth service does not tell

    bool can(const char* flag) const { return flags.contains(QLatin1String(flag)); }
};

// The first of that UUID below the service or device at `above` that can do one of two things.
std::optional<characteristic> find_characteristic(const bluez_objects& objects, const QString& above,
                                                  const char* uuid, const char* one, const char* other) {
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        const QVariantMap properties = object->value(bluez::characteristic_interface);
        if (!object.key().path().startsWith(above + u'/') ||
            !is_uuid(properties.value(QStringLiteral("UUID")).toString(), uuid))
            continue;
        const characteristic found{object.key().path(),
                                   properties.value(QStringLiteral("Flags")).toStringList(),
                                   properties.value(QStringLiteral("MTU")).toInt()};
        if (found.can(one) || found.can(other))
            return found;
    }
    return std::nullopt;
}

std::optional<gatt_port> port_of_service(const bluez_objects& objects, const QString& service_path,
                                         const adapter_service& known) {
    const auto notifies = find_characteristic(objects, service_path, known.notifies, "notify", "indicate");
    const auto written =
        find_characteristic(objects, service_path, known.written, "write-without-response", "write");
    if (!notifies || !written)
        return std::nullopt;
    gatt_port port{.notifies = notifies->path,
                   .written = written->path,
                   .without_response = written->can("write-without-response")};
    if (written->mtu > packet_head)
        port.longest_write = written->mtu - packet_head;
    return port;
}

} // namespace

bool is_adapter_service(const QString& uuid) {
    return std::any_of(table.begin(), table.end(),
                       [&](const adapter_service& known) { return is_uuid(uuid, known.service); });
}

std::optional<gatt_port> find_gatt_port(const bluez_objects& objects, const QString& device_path) {
    for (const adapter_service& known : table) {
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            const QString uuid =
                object->value(bluez::service_interface).value(QStringLiteral("UUID")).toString();
            if (!object.key().path().startsWith(device_path + u'/') || !is_uuid(uuid, known.service))
                continue;
            if (const auto port = port_of_service(objects, object.key().path(), known))
                return port;
        }
    }
    return std::nullopt;
}

} // namespace brivant
