#pragma once

#include <QString>
#include <vector>

namespace brivant {

// Where the system keeps lasting names of serial ports, in the folders "by-id" and "by-path".
const QString serial_links = QStringLiteral("/dev/serial");

struct serial_port {
    QString path;             // "/dev/ttyUSB0", another one each time it is plugged in
    QString stable_name = {}; // a link that leads to it and lasts, else the path
    QString maker = {};       // as it calls itself, "" where it does not
    QString product = {};
    int vendor_id = 0; // of USB, 0 where it has none
    int product_id = 0;
    bool has_adapter_chip = false; // one that adapters have; other devices have it too
};

// The serial ports of this computer, those with an adapter's chip first. Ports that are built in are left
// out.
std::vector<serial_port> serial_ports();
// The same of what the system told; of each, stable name and chip are worked out here.
std::vector<serial_port> as_listed(std::vector<serial_port> told, const QString& links = serial_links);

// The name to remember for a port: it stays when the port is plugged in again. The path itself where there is
// none.
QString stable_port_name(const QString& path, const QString& links = serial_links);

} // namespace brivant
