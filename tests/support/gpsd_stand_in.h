#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <memory>

namespace brivant {

// What stands where gpsd would, and says what a test wants, with good manners or bad ones.
class gpsd_stand_in {
public:
    QByteArray greeting = "{\"class\":\"VERSION\",\"release\":\"3.22\",\"proto_major\":3}\r\n";
    QByteArray asked;      // all that came
    int connections = 0;   // so far
    bool hangs_up = false; // behind the greeting

    gpsd_stand_in() {
        QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, &server, [this] {
            ++connections;
            client.reset(server.nextPendingConnection());
            QObject::connect(client.get(), &QTcpSocket::readyRead, client.get(),
                             [this] { asked += client->readAll(); });
            client->write(greeting);
            if (hangs_up)
                client->disconnectFromHost();
        });
        listen();
    }

    // Behind close() at the place it had before.
    void listen() {
        server.listen(QHostAddress::LocalHost, port);
        port = server.serverPort();
    }
    void close() {
        server.close();
        client.reset();
    }
    QString place() const { return QStringLiteral("127.0.0.1:%1").arg(port); }

    void say(const QByteArray& line) { client->write(line + "\r\n"); }
    bool has_client() const { return client && client->state() == QAbstractSocket::ConnectedState; }

    // A fix at noon and so many seconds.
    static QByteArray fix(int second, double latitude, double longitude = 13.25) {
        return "{\"class\":\"TPV\",\"device\":\"/dev/a\",\"mode\":3,\"time\":\"2026-11-22T12:00:" +
               QByteArray::number(second).rightJustified(2, '0') +
               ".000Z\",\"lat\":" + QByteArray::number(latitude, 'f', 6) +
               ",\"lon\":" + QByteArray::number(longitude, 'f', 6) +
               ",\"altMSL\":34.5,\"speed\":16.6,\"track\":22.1,\"eph\":4.9}";
    }

private:
    QTcpServer server;
    quint16 port = 0;
    std::unique_ptr<QTcpSocket> client;
};

} // namespace brivant
