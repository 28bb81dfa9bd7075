#pragma once

#include "link/adapter_place.h"
#include "link/transport.h"

#include <QTcpSocket>

namespace brivant {

// The TCP connection to a Wi-Fi adapter at the address and port of its place. Commands are written
// without delay (Nagle's algorithm is off): each is answered before the next is sent.
class wifi_transport : public transport {
    Q_OBJECT

public:
    explicit wifi_transport(const adapter_place& place);
    ~wifi_transport() override { close(); }

    condition state() const override { return current; }
    void open() override;
    void close() override;
    void write(const QByteArray& command) override;

private:
    void take_bytes();
    void stream_error(QAbstractSocket::SocketError error);
    void end_of_stream();

    const adapter_place& address;
    QTcpSocket socket;
    condition current = condition::closed;
};

// Received bytes as text. Bytes that are not UTF-8 as they stand, such as a character cut in two, give
// nothing; NUL bytes, which some adapters send, are left out.
QString decode_received(QByteArrayView bytes);

} // namespace brivant
