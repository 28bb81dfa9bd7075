#pragma once

#include "base/settings_table.h"
#include "link/adapter_address.h"

#include <QString>

namespace brivant {

// Where the adapter is: the kind of link, and what each kind leads to. Start-up, the preferences and the
// choice of an adapter set it; the link takes the device that the person chooses or that tells its name.
class adapter_place {
public:
    int interface_kind() const { return kind; }
    const QString& wifi_ip() const { return ip; }
    const QString& wifi_port() const { return port; }
    // Of the Bluetooth device, "" while none is chosen.
    const QString& bt_address() const { return device; }
    const QString& last_BT_Device() const { return device_name; }
    // The device file of a USB adapter, and its speed in bit/s, 0 while that is to be found out.
    const QString& serial_port() const { return other; }
    int serial_speed() const { return speed; }
    // Of the Bluetooth LE device.
    const QString& le_address() const { return other; }
    // What a USB or LE adapter is called: what it tells, else its address.
    const QString& other_name() const { return other_called.isEmpty() ? other : other_called; }

    // A device reached by a channel of this computer's own: Bluetooth, LE or USB, not a host of a network.
    bool is_device() const {
        return kind == interface_bluetooth || kind == interface_le || kind == interface_serial;
    }
    // What that device is called.
    const QString& device_called() const { return kind == interface_bluetooth ? device_name : other_name(); }
    // `where` is "" for a simulated adapter and while no device is chosen.
    adapter_address now() const {
        switch (kind) {
        case interface_bluetooth: return {kind, device, 0};
        case interface_wifi: return {kind, ip, port.toUShort()};
        case interface_serial: return {kind, other, speed};
        case interface_le: return {kind, other, 0};
        default: return {kind, {}, 0};
        }
    }
    // What tells this adapter from others; "" as above.
    QString address() const { return kind == interface_wifi ? ip + u':' + port : now().where; }

    void choose(int interface) { kind = interface; }
    void choose_wifi(const QString& address, const QString& its_port) {
        kind = interface_wifi;
        ip = address;
        port = its_port;
    }
    // A Bluetooth device whose name is not known is called by its address.
    void choose(const adapter_address& what, const QString& name) {
        kind = what.kind;
        if (kind == interface_wifi)
            return choose_wifi(what.where, QString::number(what.number));
        if (kind == interface_bluetooth)
            return take_device(what.where, name.isEmpty() ? what.where : name);
        other = what.where;
        other_called = name;
        speed = what.number;
    }
    // The Bluetooth device from now on, whatever the kind.
    void take_device(const QString& address, const QString& name) {
        device = address;
        device_name = name;
    }
    // What a USB or LE adapter was found to be.
    void take_name(const QString& name) { other_called = name; }
    void take_speed(int bits_a_second) { speed = bits_a_second; }

private:
    int kind = interface_bluetooth;
    QString ip = setting::wifi_ip.first_value();
    QString port = setting::wifi_port.first_value();
    QString device, device_name;
    QString other, other_called; // USB or LE
    int speed = 0;
};

} // namespace brivant
