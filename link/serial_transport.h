#pragma once

#include "link/adapter_place.h"
#include "link/transport.h"

#include <QList>
#include <QTimer>
#include <memory>

class QSerialPort;

namespace brivant {

// The serial port of a USB adapter, at the device of its place. Opening it finds the speed out: at each that
// adapters have it sends what every adapter answers with its prompt, beginning with the speed of the place.
class serial_transport : public transport {
    Q_OBJECT

public:
    explicit serial_transport(const adapter_place& place);
    ~serial_transport() override;

    condition state() const override { return current; }
    void open() override;
    void close() override;
    void write(const QByteArray& command) override;
    int speed() const override { return found; }

private:
    void try_next_speed(int milliseconds);
    void ask(int milliseconds);
    void take_bytes();
    void came_to_rest();
    void port_is_gone();
    void fail(const QString& reason);

    const adapter_place& address;
    std::unique_ptr<QSerialPort> port;
    condition current = condition::closed;
    QList<int> speeds; // still to be tried
    QTimer answer_due;
    QTimer rest; // after the last byte of an answer
    QByteArray answer;
    bool asked_again = false;
    int found = 0;
};

// Whether an adapter has answered, rather than its bytes been read at a wrong speed or a device said
// something else: text with a prompt on a line of its own behind it. What was cut off by the change of the
// speed may stand before it.
bool is_answer_of_adapter(const QByteArray& bytes);

} // namespace brivant
