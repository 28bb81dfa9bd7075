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
    bool is_undefined = false; // the PID is not decoded here
};
// The greatest values that a car's PIDs 4F and 50 tell for PIDs 24 to 2B, 34 to 3B, 44, 0B and 10; 0 where
// the usual scale holds.
struct full_scales {
    double lambda = 0;
    double o2_voltage = 0;        // V
    double o2_current = 0;        // mA
    double manifold_pressure = 0; // kPa
    double air_flow = 0;          // g/s
    bool operator==(const full_scales&) const = default;
};
// Takes up what the data of PID 4F or 50 tell; other PIDs tell nothing.
void take_full_scales(int pid, const QByteArray& data, full_scales& scales);

// How a value is read: in which units, and by which scales of the same ECU.
struct value_reading {
    value_reading(unit_system its_units, const full_scales& its_scales = {})
        : units(its_units), scales(its_scales) {}
    unit_system units;
    full_scales scales;
};
// `data`: the bytes behind service and PID. A quantity that the PID itself marks as unsupported is left out.
pid_value decode_pid(int pid, const QByteArray& data, const value_reading& reading);
// The same from one ECU's reply without header, "410C1AF8" (mode byte, PID, data) or "420C001AF8" (with the
// number of the freeze frame). Anything else is absent.
pid_value read_pid_value(const QString& reply, const value_reading& reading);
// "1726.00 rpm", "O2 voltage 0.450 V, fuel trim -3.1 %"; the reason in brackets when there is no value.
QString pid_value_text(const pid_value& value);

// True when a text that was made from the same reply ("1726.00 RPM") says the same: the same numbers within
// one percent (conversions are rounded) in the same units. A text without numbers says the same when the PID
// is a state and the text names one. It tells a difference; what is shown by the standard is its own in any
// case.
bool says_the_same(const QString& shown, const pid_value& standard);

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
