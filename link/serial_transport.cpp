#include "link/serial_transport.h"

#include "base/console_log.h"
#include "link/serial_trouble.h"

#include <QFileInfo>
#include <QSerialPort>
#include <algorithm>
#include <array>
#include <utility>

namespace brivant {

namespace {

constexpr std::array usual_speeds{38400, 115200, 9600, 230400, 57600, 19200, 500000};
constexpr auto question = "\x7F\x7F\r"; // no command: it ends what the adapter does, or the line it has begun
constexpr int first_answer_ms = 350;    // the likeliest speed is worth a longer wait
constexpr int answer_ms = 200;
constexpr int rest_ms = 40; // longer than USB chips keep bytes back
constexpr qsizetype longest_answer = 4096;

// A byte that is no character was damaged on the way, or comes from a wrong speed.
QString text_of(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes)
        if (byte > 0)
            text += QLatin1Char(byte);
    return text;
}

bool ends_in_prompt(QByteArray bytes) {
    bytes.removeIf([](char byte) { return byte == '\0' || byte == ' ' || byte == '\n'; });
    return bytes.endsWith("\r>");
}

} // namespace

bool is_answer_of_adapter(const QByteArray& bytes) {
    const auto unreadable = std::count_if(bytes.cbegin(), bytes.cend(), [](char byte) {
        return byte < 0 || (byte > 0 && byte < ' ' && byte != '\r' && byte != '\n' && byte != '\t');
    });
    return ends_in_prompt(bytes) && unreadable * 4 <= bytes.size();
}

serial_transport::serial_transport(const adapter_place& place)
    : address(place), port(std::make_unique<QSerialPort>()) {
    answer_due.setSingleShot(true);
    rest.setSingleShot(true);
    connect(&answer_due, &QTimer::timeout, this, [this] { try_next_speed(answer_ms); });
    connect(&rest, &QTimer::timeout, this, &serial_transport::came_to_rest);
    connect(port.get(), &QSerialPort::readyRead, this, &serial_transport::take_bytes);
    connect(port.get(), &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        if (error != QSerialPort::NoError && error != QSerialPort::UnsupportedOperationError)
            port_is_gone();
    });
}

serial_transport::~serial_transport() {
    serial_transport::close();
}

void serial_transport::open() {
    if (current != condition::closed)
        return;
    current = condition::opening;
    found = 0;
    speeds = QList<int>(usual_speeds.begin(), usual_speeds.end());
    if (const int last = address.serial_speed(); last > 0) {
        speeds.removeAll(last);
        speeds.prepend(last);
    }
    // The device itself, not a link to it: others look for its lock under its own name.
    const QString device = QFileInfo(address.serial_port()).canonicalFilePath();
    port->setPortName(device.isEmpty() ? address.serial_port() : device);
    if (!port->open(QIODevice::ReadWrite))
        return fail(why_port_did_not_open(address.serial_port(), port->errorString()));
    try_next_speed(first_answer_ms);
}

void serial_transport::try_next_speed(int milliseconds) {
    rest.stop();
    while (!speeds.isEmpty() && !port->setBaudRate(speeds.constFirst()))
        speeds.removeFirst(); // not every chip has every speed
    if (speeds.isEmpty())
        return fail(QStringLiteral("No adapter answers at %1, at any usual speed. Check that it is plugged "
                                   "into the car and has power, and that this is its port.")
                        .arg(address.serial_port()));
    found = speeds.takeFirst();
    console_log(QStringLiteral("Trying %1 at %2 bit/s").arg(port->portName()).arg(found));
    asked_again = false;
    ask(milliseconds);
}

void serial_transport::ask(int milliseconds) {
    port->clear(QSerialPort::Input);
    answer.clear();
    answer_due.start(milliseconds);
    port->write(question);
}

void serial_transport::came_to_rest() {
    if (!is_answer_of_adapter(answer)) {
        // Some adapters echo what they heard at the speeds before.
        if (ends_in_prompt(answer) && !std::exchange(asked_again, true))
            ask(answer_ms);
        return;
    }
    answer_due.stop();
    answer.clear();
    console_log(QStringLiteral("Connected"));
    current = condition::open;
    Q_EMIT opened();
}

void serial_transport::close() {
    current = condition::closed; // first: closing may report an error
    answer_due.stop();
    rest.stop();
    if (port->isOpen())
        port->close();
}

void serial_transport::write(const QByteArray& command) {
    if (current == condition::open)
        port->write(command);
}

void serial_transport::take_bytes() {
    if (current == condition::opening) {
        answer = (answer + port->readAll()).right(longest_answer);
        rest.start(rest_ms);
        return;
    }
    const QString text = text_of(port->readAll());
    if (current == condition::open && !text.isEmpty())
        Q_EMIT OBDevent(text);
}

void serial_transport::port_is_gone() {
    if (current == condition::closed || !port->isOpen())
        return; // or open() tells
    console_log(QStringLiteral("Error %1").arg(port->errorString()));
    if (current == condition::opening)
        return fail(
            QStringLiteral("%1 was unplugged while the adapter was looked for.").arg(address.serial_port()));
    take_bytes(); // what came before
    if (current != condition::open)
        return;
    console_log(QStringLiteral("Disconected"));
    close();
    Q_EMIT closed();
}

void serial_transport::fail(const QString& reason) {
    close();
    found = 0;
    Q_EMIT failed(reason);
}

} // namespace brivant
