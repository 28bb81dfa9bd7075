#pragma once

#include "link/adapter_place.h"
#include "link/bluetooth_service.h"
#include "link/own_thread.h"
#include "link/transport.h"

#include <memory>

namespace brivant {

class serial_port_socket;

// The RFCOMM channel to the serial port of the Bluetooth device of its place. Each command is
// followed by one zero byte.
class bluetooth_transport : public transport {
    Q_OBJECT

public:
    explicit bluetooth_transport(const adapter_place& place) : wanted(place) {}
    ~bluetooth_transport() override { close(); }

    condition state() const override { return current; }
    void open() override;
    void close() override;
    void write(const QByteArray& command) override;
    QString far_end_name() const override { return device.name; }

private:
    void connect_when_usable(const bluetooth_surroundings& surroundings);
    void start_channel(const QString& address);
    void take_bytes(const QByteArray& bytes);
    void fail(const QString& reason);
    QString why_refused() const;

    const adapter_place& wanted;
    bluetooth_service service;
    std::unique_ptr<own_thread> thread; // from the first attempt on
    serial_port_socket* channel = nullptr;
    bluetooth_device device; // of the attempt or the channel
    condition current = condition::closed;
    int attempt = 0; // what belongs to an earlier one is dropped
};

} // namespace brivant
