#include "tools/bluez_stand_in/rfcomm_bridge.h"

#include <QHostAddress>
#include <sys/socket.h>
#include <unistd.h>

rfcomm_bridge::rfcomm_bridge(quint16 its_port, QByteArray& all_received, QObject* parent)
    : QObject(parent), received(all_received), is_mute(its_port == 0) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return;
    far_end = ends[1];
    channel.setSocketDescriptor(ends[0]);
    connect(&channel, &QLocalSocket::readyRead, this, &rfcomm_bridge::pass_on);
    connect(&channel, &QLocalSocket::disconnected, this, &QObject::deleteLater);
    if (is_mute)
        return;
    connect(&adapter, &QTcpSocket::connected, this, &rfcomm_bridge::pass_on);
    connect(&adapter, &QTcpSocket::readyRead, this, [this] { say(adapter.readAll()); });
    connect(&adapter, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(&adapter, &QTcpSocket::errorOccurred, this, &QObject::deleteLater);
    adapter.connectToHost(QHostAddress::LocalHost, its_port);
}

rfcomm_bridge::~rfcomm_bridge() {
    release_descriptor();
    channel.disconnect(this);
    adapter.disconnect(this);
}

void rfcomm_bridge::release_descriptor() {
    if (far_end >= 0)
        ::close(far_end);
    far_end = -1;
}

void rfcomm_bridge::say(const QByteArray& bytes) {
    channel.write(bytes);
    channel.flush();
}

void rfcomm_bridge::pass_on() {
    const QByteArray bytes = channel.readAll();
    received += bytes;
    waiting += bytes;
    if (is_mute || adapter.state() != QAbstractSocket::ConnectedState)
        return;
    adapter.write(waiting);
    adapter.flush();
    waiting.clear();
}
