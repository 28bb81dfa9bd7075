#include "link/wifi_transport.h"

#include "base/console_log.h"

#include <QUtf8StringView>

namespace brivant {

namespace {
constexpr qint64 read_size = 1024;
}

QString decode_received(QByteArrayView bytes) {
    if (!QUtf8StringView(bytes.data(), bytes.size()).isValidUtf8())
        return {};
    return QString::fromUtf8(bytes).remove(QChar::Null);
}

wifi_transport::wifi_transport(const adapter_place& place) : address(place) {
    connect(&socket, &QTcpSocket::connected, this, [this] {
        socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        console_log(QStringLiteral("Connected"));
        current = condition::open;
        Q_EMIT opened();
    });
    connect(&socket, &QTcpSocket::readyRead, this, &wifi_transport::take_bytes);
    connect(&socket, &QTcpSocket::bytesWritten, this,
            [] { console_log(QStringLiteral("NSStreamEventHasSpaceAvailable")); });
    connect(&socket, &QTcpSocket::errorOccurred, this, &wifi_transport::stream_error);
    connect(&socket, &QTcpSocket::disconnected, this, &wifi_transport::end_of_stream);
}

void wifi_transport::open() {
    if (current != condition::closed)
        return;
    current = condition::opening;
    socket.connectToHost(address.wifi_ip(), address.wifi_port().toUShort());
}

void wifi_transport::close() {
    current = condition::closed; // first: abort() itself reports a disconnection
    socket.abort();
}

void wifi_transport::write(const QByteArray& command) {
    if (current == condition::open)
        socket.write(command);
}

void wifi_transport::take_bytes() {
    while (current == condition::open && socket.bytesAvailable() > 0) {
        char data[read_size];
        const qint64 size = socket.read(data, read_size);
        if (size < 0)
            return Q_EMIT read_failed(socket.errorString());
        if (size == 0)
            return console_log(QStringLiteral("No data."));
        const QString text = decode_received({data, size});
        if (!text.isEmpty())
            Q_EMIT OBDevent(text);
    }
}

void wifi_transport::stream_error(QAbstractSocket::SocketError error) {
    const bool was_open = current == condition::open;
    if (was_open && error == QAbstractSocket::RemoteHostClosedError)
        return; // the end of the stream, told by disconnected()
    if (current == condition::closed)
        return;
    const QString reason = socket.errorString();
    console_log(QStringLiteral("Error %1").arg(reason));
    if (!was_open)
        close();
    Q_EMIT failed(reason);
    if (was_open)
        end_of_stream();
}

void wifi_transport::end_of_stream() {
    if (current != condition::open)
        return;
    take_bytes(); // what came before the end
    if (current != condition::open)
        return;
    console_log(QStringLiteral("Disconected"));
    close();
    Q_EMIT closed();
}

} // namespace brivant
