#pragma once

#include "link/adapter_place.h"
#include "link/transport.h"

#include <QDBusPendingCall>
#include <memory>
#include <optional>

namespace brivant {

class gatt_channel;

// The serial port of the Bluetooth LE device of its place.
class le_transport : public transport {
    Q_OBJECT

public:
    static constexpr int usual_patience_ms = 10000;

    // Each step of the way to the device gets `patience`.
    explicit le_transport(const adapter_place& place, int patience = usual_patience_ms);
    ~le_transport() override;

    condition state() const override { return current; }
    void open() override;
    void close() override;
    void write(const QByteArray& command) override;
    QString far_end_name() const override { return device_name; }

private:
    void take_bytes(const QByteArray& bytes);
    void fail(const QString& reason);

    const adapter_place& wanted;
    const int patience_ms;
    std::unique_ptr<gatt_channel> channel;   // of the attempt or the connection
    std::optional<QDBusPendingCall> leaving; // how the one before let its device go
    QString device_name;
    condition current = condition::closed;
};

} // namespace brivant
