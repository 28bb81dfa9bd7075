#pragma once

#include "base/shared_types.h"

#include <QByteArray>
#include <QStringList>

namespace brivant {

// What a mode 01 PID says by SAE J1979, PIDs 00 to C4. The same data in a freeze frame (service 02) reads
// alike.

struct quantity {
    QString name; // "" when the PID holds one quantity only
    double value = 0;
    int decimals = 0;
    QString unit;
};
struct pid_value {
    QList<quantity> quantities;
    QStringList states;        // bit-coded data spelled out: "MIL on", "Catalyst: complete"
    QString absent;            // why there is no value; "" when there is one
    bool is_undefined = false; // the standard has no formula for the PID
};
// `data`: the bytes behind service and PID. A quantity that the PID itself marks as unsupported is left out.
pid_value decode_pid(int pid, const QByteArray& data, unit_system units);
// The same from one ECU's reply without header, "410C1AF8" (mode byte, PID, data) or "420C001AF8" (with the
// number of the freeze frame). Anything else is absent.
pid_value read_pid_value(const QString& reply, unit_system units);
// "1726.00 rpm", "O2 voltage 0.450 V, fuel trim -3.1 %"; the reason in brackets when there is no value.
QString pid_value_text(const pid_value& value);

// True when a text that was made from the same reply ("1726.00 RPM") says the same: the same numbers within
// one percent (conversions are rounded) in the same units. A text without numbers says the same when the PID
// is a state and the text names one.
bool says_the_same(const QString& shown, const pid_value& standard);
// What the standard reads from a value's stored reply ("410C1AF8"), where that differs from the shown text;
// "" where it does not, or where the standard does not define the PID.
QString other_value_text(const QString& shown, const QString& reply, unit_system units);

struct monitor {
    QString name;
    bool supported = false;
    bool complete = false;
};
struct monitor_status {
    bool mil = false;
    int codes = 0;
    QList<monitor> monitors; // three continuous ones, then eight of the engine's kind
};
// PIDs 01 (since the codes were cleared) and 41 (this drive cycle). Empty monitors for fewer than four bytes.
monitor_status read_monitor_status(const QByteArray& data);

} // namespace brivant
