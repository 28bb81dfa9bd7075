#pragma once

#include "link/adapter_address.h"

#include <QList>
#include <QObject>
#include <QString>
#include <functional>

namespace brivant {

struct bluetooth_device {
    QString address; // "AA:BB:CC:DD:EE:FF"
    QString name;    // the address when it has none
    bool paired = false;
    bool serial_port =
        false; // it offers the serial port service (0x1101); before pairing that may be unknown
    bool knows_services = false; // what it offers is known
    bool is_le = false;          // it is reached over Bluetooth LE; else over its serial port
    bool may_be_adapter = false; // by its services or its name
    adapter_address where() const { return {is_le ? interface_le : interface_bluetooth, address, 0}; }
    bool operator==(const bluetooth_device&) const = default;
};

enum class bluetooth_condition { ready, no_service, no_access, no_answer, no_adapter, switched_off };

// What the Bluetooth service tells about this computer and the devices around it.
struct bluetooth_surroundings {
    bluetooth_condition condition = bluetooth_condition::no_service;
    QString adapter; // the radio's object on the bus
    QList<bluetooth_device>
        devices; // paired ones with the serial port, what else may be an adapter, the others
    bool operator==(const bluetooth_surroundings&) const = default;
};

// The Bluetooth service of this computer, BlueZ on the system bus. No call waits: each answer comes later
// from the event loop, and not at all once this object is gone.
class bluetooth_service : public QObject {
    Q_OBJECT

public:
    void look(std::function<void(const bluetooth_surroundings&)> tell);
    enum class kind_of_device { any, le };
    // Makes the radio of `adapter` look for devices until stop_discovery(). `tell` gets why it does not, ""
    // when it does.
    void start_discovery(const QString& adapter, std::function<void(const QString& problem)> tell,
                         kind_of_device kind = kind_of_device::any);
    void stop_discovery(const QString& adapter);
};

// Why Bluetooth cannot be used and what to do about it, a sentence; "" when it can.
QString why_unusable(bluetooth_condition condition);
QString pairing_advice();

} // namespace brivant
