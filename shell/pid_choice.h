#pragma once

#include "toolkit/mac_toolies.h"

namespace brivant {

// A value that can be sampled, as it is shown to the person.
struct pid_entry {
    QString item;         // as it is stored: "0C|7E8"; "0C" while no ECU of the vehicle is known
    QString pid;          // "0C"
    QString ecu;          // "Engine", "Transmission" or the header; "" while no ECU is known
    QString name;         // "Engine RPM", "" without one
    bool reported = true; // false: chosen, but this vehicle does not report it
};

// What live data samples of one vehicle, while it is being chosen: the values that its ECUs report, and the
// chosen ones in their order. It shows and stores nothing.
class pid_choice {
public:
    // A settings file may name any number of items: no more than these are taken.
    static constexpr qsizetype most_chosen = 64;

    pid_choice() = default;
    // `available`: the PIDs of each ECU, empty while the vehicle was not read yet. `samples`: the stored
    // sample set; items that are no PID, and those that stand twice, are left out. An item without an ECU
    // ("0C") becomes the engine's.
    pid_choice(const obd_groups& available, const QStringList& samples, const mac_toolies& toolies);

    // By ECU and PID. The maps of supported PIDs (20, 40 ...) are no values and left out.
    const QList<pid_entry>& available() const { return offered; }
    const QList<pid_entry>& chosen() const { return taken; }
    // Values of more than one ECU are shown.
    bool has_several_ecus() const;
    // The sample set as it is stored.
    QStringList items() const;

    bool is_chosen(const QString& item) const { return place_of(item) >= 0; }
    // The place among the chosen ones, -1 for none.
    qsizetype place_of(const QString& item) const;
    bool is_full() const { return taken.size() >= most_chosen; }

    // Puts an available item behind the chosen ones. False when it stands there already, is not available, or
    // no more can be chosen.
    bool add(const QString& item);
    bool remove(const QString& item);
    // Puts the chosen item at `from` at the place `to`. False when one of them does not exist.
    bool move(qsizetype from, qsizetype to);

    // True when every word of `search` stands in the name, the PID or the ECU of the entry.
    static bool matches(const pid_entry& entry, const QString& search);

private:
    QList<pid_entry> offered;
    QList<pid_entry> taken;
};

} // namespace brivant
