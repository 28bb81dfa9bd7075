#pragma once

#include <QHash>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace brivant {

// A web server on this computer that answers each path with the bytes it was given, and remembers what it was
// asked.
class http_server {
public:
    QHash<QString, QByteArray> answers; // whole answers, head and all; a path without one is never answered
    QStringList asked;
    bool hangs_up = true; // behind an answer

    http_server() {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            QTcpSocket* socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(*socket); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
    }

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

private:
    void answer(QTcpSocket& socket) {
        const QString path = QString::fromLatin1(socket.readAll()).section(u' ', 1, 1);
        asked += path;
        const auto found = answers.constFind(path);
        if (found == answers.cend())
            return;
        socket.write(*found);
        if (hangs_up)
            socket.disconnectFromHost();
    }

    QTcpServer server;
};

} // namespace brivant
