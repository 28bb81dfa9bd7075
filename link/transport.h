#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

namespace brivant {

// One connection to an adapter. Wi-Fi, Bluetooth and the simulated adapter are siblings behind it.
//
//   closed --open()--> opening --opened()--> open --close() or closed()--> closed
//
// open() while opening or open does nothing. failed() may come while opening (the transport is closed again
// and can be opened anew) and while open (closed() follows). close() emits nothing. Signals may be emitted
// inside open() and write().
class transport : public QObject {
    Q_OBJECT

public:
    enum class condition { closed, opening, open };

    virtual condition state() const = 0;
    virtual void open() = 0;
    virtual void close() = 0;
    // Writes the command, which ends in "\r", whole. Nothing is written unless the transport is open.
    virtual void write(const QByteArray& command) = 0;
    // What the far end is called, "" when that is not known.
    virtual QString far_end_name() const { return {}; }
    // The speed of a serial port in bit/s that was found to be the adapter's, 0 of other links.
    virtual int speed() const { return 0; }

Q_SIGNALS:
    void opened();
    // While opening: the radio can be used, and calls the device.
    void radio_ready();
    // Text from the adapter as it came; a reply may be split over several.
    void OBDevent(const QString& text);
    // `reason`: a description for the person.
    void failed(const QString& reason);
    // What came could not be read. The transport stays as it is.
    void read_failed(const QString& reason);
    // The far end closed the connection, or it broke.
    void closed();
};

} // namespace brivant
