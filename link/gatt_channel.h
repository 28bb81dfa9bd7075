#pragma once

#include "link/bluetooth_service.h"
#include "link/gatt_services.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>
#include <optional>

class QDBusMessage;

namespace brivant {

// One attempt to reach the serial port of a Bluetooth LE device, and the channel that comes of it. Used once.
// It never pairs by itself.
class gatt_channel : public QObject {
    Q_OBJECT

public:
    // `its_name`: what the device is called until it is found. Each step of the way gets `patience_ms`.
    gatt_channel(const QString& its_address, const QString& its_name, int patience_ms);

    // Begins once `before` is answered: the Bluetooth service takes its time to let a device go.
    void open(const std::optional<QDBusPendingCall>& before);
    // Written in pieces as long as the device takes, in order.
    void write(const QByteArray& bytes);
    // Lets the device go; no signal comes afterwards. What a channel to the same device has to wait for.
    std::optional<QDBusPendingCall> leave();
    const QString& device_name() const { return name; }

Q_SIGNALS:
    void radio_ready(); // see transport
    void opened();
    void received(const QByteArray& bytes);
    // It could not be opened, or wants more before it takes a command: a sentence.
    void failed(const QString& reason);
    // It was open, and the device is gone or takes nothing any more.
    void closed();

private Q_SLOTS:
    void take_change(const QDBusMessage& signal);
    void take_removal(const QDBusMessage& signal);

private:
    enum class step { idle, looking, searching, connecting, resolving, subscribing, open, over };

    void begin(step next);
    void out_of_patience();
    template <typename function>
    void when(const QDBusPendingCall& call, function act);
    void look();
    bool find_device(const bluez_objects& objects);
    void search();
    void stop_search();
    void connect_device();
    void look_for_port();
    void take_services(const bluez_objects& objects);
    void subscribe();
    void write_next();
    void follow(const QString& path);
    void take_device_change(const QVariantMap& changed);
    void fail(const QString& reason);
    void lose();
    bool wants_pairing(const QDBusError& error) const;
    QString why_refused(const QDBusError& error) const;

    bluetooth_service service;
    const QString address;
    QString name;
    QString radio, device; // objects on the bus
    QString bluez_owner;   // its own name on the bus: what others say is not heard
    gatt_port port;
    step now = step::idle;
    bool paired = false;
    bool was_connected = false; // by someone else, who keeps it
    bool is_searching = false;
    bool is_subscribed = false;
    bool is_writing = false;
    QByteArray unwritten;
    QTimer patience;
    QTimer next_look;
};

} // namespace brivant
