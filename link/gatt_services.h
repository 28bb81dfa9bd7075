#pragma once

#include "link/bluez_bus.h"

#include <QString>
#include <optional>

namespace brivant {

// The two ends of the serial port that an adapter carries over Bluetooth LE, as objects on the bus.
struct gatt_port {
    QString notifies; // the characteristic with what the adapter says
    QString written;  // the one that takes commands; may be the same
    bool without_response = false;
    qsizetype longest_write = 20; // bytes
};

// Whether adapters have their serial port behind the service of that UUID.
bool is_adapter_service(const QString& uuid);

// The serial port of the device at `device_path` among all objects of the Bluetooth service, by the first
// service of the table that is there whole. A device may have others that notify as well, such as the one
// that its firmware is loaded through.
std::optional<gatt_port> find_gatt_port(const bluez_objects& objects, const QString& device_path);

} // namespace brivant
