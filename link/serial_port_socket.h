#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class QBluetoothSocket;

namespace brivant {

// One attempt to open the serial port of a Bluetooth device, and the channel that comes of it. Used once:
// QtBluetooth cannot use a socket again after a failed attempt. It stays on a thread of its own, since
// QtBluetooth waits inside its calls, up to 25 s when the Bluetooth service hangs. Nothing outside of this
// class knows QtBluetooth.
class serial_port_socket : public QObject {
    Q_OBJECT

public:
    // Before QtBluetooth is first used in the process.
    static void prepare();

    explicit serial_port_socket(const QString& its_address) : address(its_address) {}

    // To be called on its thread.
    void open();
    void write(const QByteArray& bytes);
    // Closes the channel, or gives up opening it, and deletes itself. No signal comes afterwards.
    void finish();

Q_SIGNALS:
    void opened();
    void received(const QByteArray& bytes);
    // It could not be opened. `has_begun`: the service had taken the request.
    void failed(int error, const QString& reason, bool has_begun);
    // It was open, and is no more.
    void closed();

private:
    void take_bytes();
    void take_error();
    void take_end();

    QString address;
    QBluetoothSocket* socket = nullptr;
    bool has_begun = false;
    bool is_open = false;
};

} // namespace brivant
