#include "link/le_transport.h"

#include "base/console_log.h"
#include "link/gatt_channel.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace brivant {

namespace {
constexpr int bus_answer_ms = 500;
} // namespace

le_transport::le_transport(const adapter_place& place, int patience) : wanted(place), patience_ms(patience) {}

// The device would stay connected, and nobody else could use it, if the program ended with the message
// unsent: the bus itself answers at once, and after all that was sent before.
le_transport::~le_transport() {
    le_transport::close();
    if (!leaving || leaving->isFinished())
        return;
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    QDBusConnection::systemBus().call(
        QDBusMessage::createMethodCall(bus, QStringLiteral("/"), bus, QStringLiteral("GetId")), QDBus::Block,
        bus_answer_ms);
}

void le_transport::open() {
    if (current != condition::closed)
        return;
    current = condition::opening;
    channel = std::make_unique<gatt_channel>(wanted.le_address(), wanted.other_name(), patience_ms);
    connect(channel.get(), &gatt_channel::opened, this, [this] {
        current = condition::open;
        device_name = channel->device_name();
        Q_EMIT opened();
    });
    connect(channel.get(), &gatt_channel::radio_ready, this, &le_transport::radio_ready);
    connect(channel.get(), &gatt_channel::received, this, &le_transport::take_bytes);
    connect(channel.get(), &gatt_channel::failed, this, &le_transport::fail);
    connect(channel.get(), &gatt_channel::closed, this, [this] {
        close();
        Q_EMIT closed();
    });
    channel->open(leaving);
}

void le_transport::close() {
    current = condition::closed;
    if (!channel)
        return;
    if (const auto call = channel->leave())
        leaving = call;
    channel->disconnect(this);
    channel.release()->deleteLater(); // it may be telling this very moment
}

void le_transport::write(const QByteArray& command) {
    if (current == condition::open)
        channel->write(command);
}

void le_transport::take_bytes(const QByteArray& bytes) {
    console_log_utf8({"BT Rcvd:[", bytes, "]"});
    const QString text = QString::fromLatin1(bytes).remove(QChar::Null);
    if (!text.isEmpty())
        Q_EMIT OBDevent(text);
}

// While it is open, the command under way is lost with it.
void le_transport::fail(const QString& reason) {
    const bool was_open = current == condition::open;
    if (!was_open)
        close();
    Q_EMIT failed(reason);
    if (was_open && current == condition::open) {
        close();
        Q_EMIT closed();
    }
}

} // namespace brivant
