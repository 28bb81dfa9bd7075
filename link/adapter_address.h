#pragma once

#include <QString>
#include <optional>

namespace brivant {

enum interface_code : int {
    interface_bluetooth = 5,
    interface_wifi = 6,
    interface_simulated = 7,
    interface_serial = 8, // USB
    interface_le = 9      // Bluetooth Low Energy
};

// Where one adapter is, whatever its kind of link.
struct adapter_address {
    int kind = interface_bluetooth;
    QString where;  // host; "00:1D:A5:68:98:8B"; "/dev/serial/by-id/usb-FTDI_..."
    int number = 0; // Wi-Fi: the TCP port; USB: the speed in bit/s, 0 where it is to be found out

    // "wifi:192.168.0.10:35000" (an IPv6 address in brackets), "bluetooth:00:1D:A5:68:98:8B", "ble:...",
    // "usb:/dev/ttyUSB0" or "usb:/dev/ttyUSB0:115200". "" for a simulated adapter and while `where` is not
    // known.
    QString text() const;
    // Nothing when the text has no such form or no such place can be.
    static std::optional<adapter_address> of(const QString& text);
    // The same of one kind, without the word before it: "192.168.0.10:35000".
    static std::optional<adapter_address> of(int kind, const QString& text);

    // Adapters are told apart by this: the speed of a serial port does not count.
    QString key() const;
    bool operator==(const adapter_address&) const = default;
};

// "AA:BB:CC:DD:EE:FF", in either case.
bool is_bluetooth_address(const QString& text);

} // namespace brivant
