#pragma once

#include "base/timers.h"
#include "base/user_defaults.h"
#include "position/gpsd_line.h"
#include "position/gpsd_place.h"
#include "position/position_source.h"

#include <QObject>
#include <QTcpSocket>

namespace brivant {

// Asks gpsd for positions, by its own protocol: its library would look up the host and wait for the
// connection within the call. One that is absent, goes away or is no gpsd is tried again, quietly and after
// pauses that grow. Everything is driven by the event loop, and nothing that comes is kept but the latest
// fix.
class gpsd_client : public QObject, public position_source {
public:
    // Both outlive it. The settings say whether positions are stored and where gpsd is, at each begin.
    gpsd_client(user_defaults& settings, timers& time_source);
    ~gpsd_client() override { gpsd_client::end(); }

    void begin() override;
    void end() override;
    bool is_there() const override { return socket.state() == QAbstractSocket::ConnectedState; }
    std::optional<position_fix> latest() const override;
    QString about() const override;

    static constexpr qint64 longest_line = 64 * 1024; // bytes
    static constexpr int fresh_ms = 3000;             // the latest fix counts as long

private:
    void try_it();
    void connected();
    void take_bytes();
    void take_line(const QByteArray& line);
    void take_fix(const gpsd_line& report);
    void try_again(const QString& why);
    bool is_fresh() const;

    user_defaults& defaults;
    timers& clock;
    std::optional<gpsd_place> place; // while it is asked
    QString place_text;
    QTcpSocket socket;
    timer_handle pause; // until the next try, or until this one has taken too long
    int tries = 0;      // since the last report
    int broken = 0;     // lines in a row
    QString problem;
    std::optional<position_fix> fix;
    QString device; // that told it
    QString time;   // of it
};

} // namespace brivant
