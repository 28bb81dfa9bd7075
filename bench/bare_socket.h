#pragma once

#include "bench/round_counter.h"
#include "shell/launch_options.h"

#include <QByteArrayList>
#include <QProcess>
#include <QTcpSocket>

namespace brivant {

// The same commands in turn on a bare socket, each sent as soon as the prompt is there: what adapter, network
// and event loop allow.
class bare_socket {
public:
    bare_socket(quint16 port, QByteArrayList commands) : asked_for(std::move(commands)) {
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        if (!socket.waitForConnected(patience_ms))
            give_up(socket.errorString());
        socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        for (const char* command : {"AT E0\r", "AT H1\r", "01 00\r"}) {
            socket.write(command);
            while (!is_answered())
                if (!socket.waitForReadyRead(patience_ms))
                    give_up(socket.errorString());
        }
        QObject::connect(&socket, &QTcpSocket::readyRead, [this] {
            if (is_answered() && counter.next())
                ask();
        });
    }

    double run() {
        return counter.run([this] { ask(); });
    }

private:
    void ask() { socket.write(asked_for[place++ % asked_for.size()]); }
    bool is_answered() {
        reply += socket.readAll();
        const bool whole = reply.contains('>');
        if (whole)
            reply.clear();
        return whole;
    }

    const QByteArrayList asked_for;
    QTcpSocket socket;
    QByteArray reply;
    qsizetype place = 0;
    round_counter counter;
};

// What a program is started with that talks to the adapter at `port` and keeps its files below `profile`.
inline launch_options options_for(quint16 port, const QString& profile) {
    launch_options options;
    options.link = launch_options::link_choice::given;
    options.address = {interface_wifi, QStringLiteral("127.0.0.1"), port};
    options.profile = profile;
    return options;
}

// Its port. `adapter` is killed by its owner.
inline quint16 start_adapter(QProcess& adapter) {
    adapter.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    adapter.start(QStringLiteral(BV_VIRTUAL_ADAPTER), {"--port", "0", "--car", "can11", "--still"});
    QByteArray line;
    while (!line.endsWith('\n')) {
        if (!adapter.waitForReadyRead(patience_ms))
            give_up(QStringLiteral("the virtual adapter does not start: %1").arg(adapter.errorString()));
        line += adapter.readLine();
    }
    return line.trimmed().split(':').last().toUShort();
}

} // namespace brivant
