#pragma once

#include <QCryptographicHash>
#include <QHash>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <memory>

namespace brivant {

// A web server on this computer that answers each path with the bytes it was given, and remembers what it was
// asked. It can also go on for ever.
class http_server {
public:
    QHash<QString, QByteArray> answers; // whole answers, head and all; a path without one is never answered
    QStringList asked;
    bool hangs_up = true; // behind an answer
    QByteArray goes_on;   // written again and again behind each answer
    int every_ms = 0;     // so often; as fast as it is taken at 0
    qint64 sent = 0;      // bytes that left for the other side

    explicit http_server(std::unique_ptr<QTcpServer> its_server = std::make_unique<QTcpServer>())
        : listener(std::move(its_server)), server(*listener) {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, &server, [this] {
            QTcpSocket* socket = server.nextPendingConnection();
            socket->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, 16 * 1024);
            QObject::connect(socket, &QIODevice::bytesWritten, socket,
                             [this](qint64 bytes) { sent += bytes; });
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(*socket); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
    }

    quint16 port() const { return server.serverPort(); }
    QString address() const { return QStringLiteral("http://127.0.0.1:%1/lite").arg(server.serverPort()); }

    // `announced`: the length that the head tells, where it is not that of the body.
    static QByteArray ok(const QByteArray& body, qint64 announced = -1) {
        return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
               QByteArray::number(announced < 0 ? body.size() : announced) + "\r\n\r\n" + body;
    }
    static QByteArray sent_on(const QString& where) {
        return "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " +
               where.toLatin1() + "\r\n\r\n";
    }
    // A version 99.1 with this archive; something else may be sent for it.
    void offer(const QByteArray& archive, const QByteArray& sent_for_it = {}) {
        answers[QStringLiteral("/lite/version.json")] =
            ok("{\"version\": \"99.1\", \"archive\": \"brivant-lite-99.1.zip\", \"size\": " +
               QByteArray::number(archive.size()) + ", \"sha256\": \"" +
               QCryptographicHash::hash(archive, QCryptographicHash::Sha256).toHex() + "\"}");
        answers[QStringLiteral("/lite/brivant-lite-99.1.zip")] =
            ok(sent_for_it.isEmpty() ? archive : sent_for_it);
    }

private:
    void answer(QTcpSocket& socket) {
        const QString path = QString::fromLatin1(socket.readAll()).section(u' ', 1, 1);
        asked += path;
        const auto found = answers.constFind(path);
        if (found == answers.cend())
            return;
        socket.write(*found);
        if (!goes_on.isEmpty())
            go_on(socket);
        else if (hangs_up)
            socket.disconnectFromHost();
    }
    void go_on(QTcpSocket& socket) {
        const auto more = [this, &socket] { socket.write(goes_on); };
        if (every_ms == 0) {
            QObject::connect(&socket, &QIODevice::bytesWritten, &socket, more);
            return;
        }
        auto* clock = new QTimer(&socket);
        QObject::connect(clock, &QTimer::timeout, &socket, more);
        clock->start(every_ms);
    }

    const std::unique_ptr<QTcpServer> listener;
    QTcpServer& server;
};

} // namespace brivant
