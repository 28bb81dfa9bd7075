#pragma once

#include "obd/reply.h"
#include <array>

namespace brivant {

// The supported-PID maps of SAE J1979 service 01 PIDs 00, 20, 40 ...: which PIDs each ECU answers.

// The engine ECU's maps of PIDs 01-20, 21-40 and 41-60, eight hex characters each.
using group_bitmaps = std::array<QString, 3>;

// Fills the group's map from a reply with headers: the only line's, the engine ECU's, else the first line's
// in order of arrival. Groups other than 0-2 are ignored. Lines that hold no map (too short, a refusal) are
// passed over.
void handle_00_replies(const QString& reply, int this_pid_group, group_bitmaps& bitmaps);
// True when the PID's bit is set in the eight hex characters of group `this_pid_set` (0: PIDs 01-20). False
// for a PID outside the group or a shorter text.
bool is_this_code_available(const QString& bitmap, const QString& this_pid, int this_pid_set);
// Adds the PIDs that each ECU's map in `maps` tells, behind `map_at` digits of data that begin with `answer`
// ("4100"). `first`: the PID before the map's first one (00, 20, 40 ...). Without headers `unnamed` is the
// data of the one that answers, who cannot be told.
void add_supported_pids(obd_groups& found, const reply& maps, const QString& unnamed, const QString& answer,
                        qsizetype map_at, unsigned first);
// True when one of them announces the map of the PIDs behind this one.
bool is_map_announced(const obd_groups& found, unsigned first);
// The PIDs of a map as two-digit hex texts. A shorter map is padded on the right with "0".
QStringList pids_of_bitmap(const QString& bitmap, unsigned first);

// An item of a sample set: "0C|7E8", or the older form "0C" whose header is "". Nothing for a text that does
// not begin with a PID of two hex digits.
struct sample_item {
    QString pid;
    QString header;
};
std::optional<sample_item> split_sample_item(const QString& item);

// False when the ECU with the item's header lacks the PID; a header that matches no ECU gives true.
bool isPID_in_avail_pid_list(const obd_groups& available, const sample_item& this_pid, int protocol);
// True when every item is supported by its ECU; also for an empty set. An item without a header ends the
// check with the result so far.
bool isEveryItemInSampleSetAvailable(const QStringList& samples, const obd_groups& availablePIDs,
                                     int protocol);
// The sample set rewritten for the ECUs of this car, without the PIDs that they lack. An empty list of ECUs
// leaves the set as it is.
QStringList fixSamplePids(const QStringList& samples, const obd_groups& available, int protocol);

// The list as JSON text (an array of objects with "header" and "pidSet"), and back. Text that is no such JSON
// gives an empty list.
QString arrayToJsonStr(const obd_groups& list);
obd_groups pids_from_json(const QString& json);
// True when both lists hold the same ECUs in any order, the PIDs of each in the same order. While the
// protocol is unknown headers are compared whole.
bool same_pid_sets(const obd_groups& one, const obd_groups& other, int protocol = -1);

} // namespace brivant
