#include "link/bluetooth_transport.h"

#include "base/console_log.h"
#include "link/serial_port_socket.h"

#include <algorithm>

namespace brivant {

void bluetooth_transport::open() {
    if (current != condition::closed)
        return;
    current = condition::opening;
    service.look([this, mine = ++attempt](const bluetooth_surroundings& surroundings) {
        if (mine == attempt && current == condition::opening)
            connect_when_usable(surroundings);
    });
}

void bluetooth_transport::connect_when_usable(const bluetooth_surroundings& surroundings) {
    if (surroundings.condition != bluetooth_condition::ready)
        return fail(why_unusable(surroundings.condition));
    const auto found = std::find_if(
        surroundings.devices.begin(), surroundings.devices.end(), [this](const bluetooth_device& known) {
            return known.address.compare(wanted.bt_address(), Qt::CaseInsensitive) == 0;
        });
    if (found == surroundings.devices.end())
        return fail(
            QStringLiteral("This computer does not know the device %1 (any more). %2, or look for it again.")
                .arg(wanted.last_BT_Device(), pairing_advice()));
    device = *found;
    if (device.is_le)
        return fail(QStringLiteral("%1 speaks Bluetooth LE only. Choose it anew from the list of devices.")
                        .arg(device.name));
    if (device.paired && device.knows_services && !device.serial_port) {
        console_log(QStringLiteral(
            "Error - no spp service in selected device.  ***This should never happen since the "
            "selector forces the user to select only devices with spp.***\n"));
        return fail(QStringLiteral("%1 offers no serial port, so it is no OBD adapter.").arg(device.name));
    }
    start_channel(device.address);
}

void bluetooth_transport::start_channel(const QString& address) {
    Q_EMIT radio_ready();
    serial_port_socket::prepare();
    if (!thread)
        thread = std::make_unique<own_thread>();
    channel = new serial_port_socket(address);
    thread->take(channel);
    // Each arrives here queued, perhaps after the attempt it belongs to was given up.
    const auto on = [this, mine = attempt](auto signal, auto act) {
        connect(channel, signal, this, [this, mine, act](const auto&... what) {
            if (mine == attempt)
                act(what...);
        });
    };
    on(&serial_port_socket::opened, [this] {
        current = condition::open;
        Q_EMIT opened();
    });
    on(&serial_port_socket::received, [this](const QByteArray& bytes) { take_bytes(bytes); });
    on(&serial_port_socket::failed, [this](int error, const QString& reason, bool has_begun) {
        console_log(has_begun
                        ? QString::asprintf("Error - failed to open the RFCOMM channel with error %08lx.\n",
                                            static_cast<unsigned long>(error))
                        : QStringLiteral("Error - open sequence failed.***\n"));
        console_log(reason);
        fail(why_refused());
    });
    on(&serial_port_socket::closed, [this] {
        close();
        Q_EMIT closed();
    });
    QMetaObject::invokeMethod(channel, &serial_port_socket::open, Qt::QueuedConnection);
}

void bluetooth_transport::close() {
    current = condition::closed;
    ++attempt;
    if (channel)
        QMetaObject::invokeMethod(channel, &serial_port_socket::finish, Qt::QueuedConnection);
    channel = nullptr; // it deletes itself
}

void bluetooth_transport::write(const QByteArray& command) {
    if (current != condition::open)
        return;
    QMetaObject::invokeMethod(
        channel, [to = channel, bytes = command + '\0'] { to->write(bytes); }, Qt::QueuedConnection);
}

void bluetooth_transport::take_bytes(const QByteArray& bytes) {
    console_log_utf8({"BT Rcvd:[", bytes, "]"});
    const QString text = QString::fromLatin1(bytes).remove(QChar::Null);
    if (!text.isEmpty())
        Q_EMIT OBDevent(text);
}

void bluetooth_transport::fail(const QString& reason) {
    close();
    Q_EMIT failed(reason);
}

// The service gives the same reason for all: refused, out of reach, no such port, wrong PIN.
QString bluetooth_transport::why_refused() const {
    if (!device.paired)
        return QStringLiteral("%1 is not paired with this computer. %2.").arg(device.name, pairing_advice());
    return QStringLiteral(
               "%1 could not be reached. See that it is plugged in, lit and near, and that no phone or "
               "other computer is connected to it.")
        .arg(device.name);
}

} // namespace brivant
