#include "link/serial_port_socket.h"

#include <QBluetoothAddress>
#include <QBluetoothSocket>
#include <QBluetoothUuid>

namespace brivant {

namespace {
constexpr qint64 read_size = 1024;
}

void serial_port_socket::prepare() {
    // Else it asks the service for its version once, and does without the service for good when it is not up
    // then.
    if (!qEnvironmentVariableIsSet("BLUETOOTH_FORCE_DBUS_LE_VERSION"))
        qputenv("BLUETOOTH_FORCE_DBUS_LE_VERSION", "5.66");
}

void serial_port_socket::open() {
    socket = new QBluetoothSocket(QBluetoothServiceInfo::RfcommProtocol, this);
    connect(socket, &QBluetoothSocket::connected, this, [this] {
        is_open = true;
        Q_EMIT opened();
    });
    connect(socket, &QBluetoothSocket::readyRead, this, &serial_port_socket::take_bytes);
    connect(socket, &QBluetoothSocket::errorOccurred, this, &serial_port_socket::take_error);
    connect(socket, &QBluetoothSocket::disconnected, this, &serial_port_socket::take_end);
    connect(socket, &QBluetoothSocket::stateChanged, this, [this](QBluetoothSocket::SocketState state) {
        has_begun |= state == QBluetoothSocket::SocketState::ConnectingState;
    });
    // The service finds the channel of the port.
    socket->connectToService(QBluetoothAddress(address),
                             QBluetoothUuid(QBluetoothUuid::ServiceClassUuid::SerialPort));
}

void serial_port_socket::write(const QByteArray& bytes) {
    if (is_open)
        socket->write(bytes);
}

void serial_port_socket::finish() {
    if (socket) {
        socket->disconnect(this);
        socket->abort(); // deleted while connected or connecting, it would leave its profile with the service
    }
    deleteLater();
}

void serial_port_socket::take_bytes() {
    while (socket->bytesAvailable() > 0) {
        const QByteArray bytes = socket->read(read_size);
        if (bytes.isEmpty())
            return;
        Q_EMIT received(bytes);
    }
}

void serial_port_socket::take_error() {
    if (is_open) {
        take_bytes();
        socket->abort(); // which may tell its end already
        return take_end();
    }
    Q_EMIT failed(static_cast<int>(socket->error()), socket->errorString(), has_begun);
}

void serial_port_socket::take_end() {
    if (!is_open)
        return; // an attempt given up ends this way too
    take_bytes();
    is_open = false;
    Q_EMIT closed();
}

} // namespace brivant
