#pragma once

#include "base/settings_table.h"

#include <QString>

namespace brivant {

enum interface_code : int { interface_bluetooth = 5, interface_wifi = 6, interface_simulated = 7 };

// Where the adapter is: the kind of link and, of Wi-Fi and Bluetooth, what it leads to. Start-up and the
// preferences choose it; the link takes the device that the person chooses or that tells its name.
class adapter_place {
public:
    int interface_kind() const { return kind; }
    const QString& wifi_ip() const { return ip; }
    const QString& wifi_port() const { return port; }
    // Of the Bluetooth device, "" while none is chosen.
    const QString& bt_address() const { return device; }
    const QString& last_BT_Device() const { return device_name; }
    // What tells this adapter from others; "" for a simulated one and while no device is chosen.
    QString address() const {
        return kind == interface_bluetooth ? device : kind == interface_wifi ? ip + u':' + port : QString();
    }

    void choose(int interface) { kind = interface; }
    void choose_wifi(const QString& address, const QString& its_port) {
        kind = interface_wifi;
        ip = address;
        port = its_port;
    }
    // The Bluetooth device from now on, whatever the kind.
    void take_device(const QString& address, const QString& name) {
        device = address;
        device_name = name;
    }

private:
    int kind = interface_bluetooth;
    QString ip = setting::wifi_ip.first_value();
    QString port = setting::wifi_port.first_value();
    QString device, device_name;
};

} // namespace brivant
