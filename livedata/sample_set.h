#pragma once

#include "base/user_defaults.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// Sample sets: lists of service 01 PIDs, each "0D" or with the ECU that is meant "0D|7E8". "E4" and "E5" are
// the program's own, worked out of others.

// The set that a mode (operation code) has of its own; none for the oxygen sensors, which the car tells.
QStringList set_of_mode(int mode);
// The person's set for the Log Run of a vehicle, or the older one of all vehicles, or the first four; where
// it was not the vehicle's own it is saved as such.
QStringList stored_log_run_set(const user_defaults& defaults, mac_toolies& toolies, int vehicle_id);
// What of a list can be sampled, PIDs in upper case, each once: a settings file may hold anything. With the
// fuel economy go the speed and the air flow of its ECU, unless the fuel rate is there.
QStringList usable_items(const QStringList& items);
// In one of how many sweeps a fast run asks for a PID: as a person wants it ("05/10"), else slow quantities,
// as temperatures and levels, seldom and all others each time.
int rate_of_pid(const QString& pid, const QStringList& wanted);
// The items that name no ECU get this one's header. True when there were any.
bool name_ecu(QStringList& items, const QString& header);

} // namespace brivant
