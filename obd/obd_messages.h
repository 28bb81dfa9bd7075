#pragma once

#include "base/shared_types.h"
#include <optional>

namespace brivant {

// Replies taken apart by ECU. `protocol` is the adapter's protocol number from "AT DPN" (-1 while unknown).

enum class protocol_class { unknown, legacy, can_11_bit, can_29_bit };
protocol_class class_of_protocol(int protocol);
// True for the protocols that frame their messages by ISO 15765-2 (6 to 12).
bool is_can(int protocol);
// Characters of a line that belong to its header, blanks removed: 6, 3 or 8; 0 while unknown.
int header_width(int protocol);

// The lines of a reply that can hold a message, blanks removed, in order of arrival. Left out are empty
// lines, lines that the adapter marks as damaged ("<DATA ERROR", "<RX ERROR"), and when at least one line is
// all hex digits, the others ("BUS INIT: OK").
QStringList reply_lines(const QString& reply);
// A refusal: "7F", the service, and why (ISO 14229-1 response codes).
struct negative_response {
    int service = 0;
    int code = 0;
    bool operator==(const negative_response&) const = default;
    // Not refused: the request is understood, and will be answered later.
    bool is_pending() const { return code == 0x78; }
};
std::optional<negative_response> negative_response_in(const QString& body, int protocol);
// One record for each of these lines, sorted by line without regard to case; an ECU's answer of more than 16
// frames on CAN stays in order of arrival. A record is empty while the protocol is unknown. The notice
// "response pending" (7F ss 78) is left out when the ECU's answer is there too.
obd_messages pullObdMsgs(const QString& reply, int protocol);
// One group a run of records of one ECU, in the order of the records, with the header of its first one. Empty
// records make no group.
obd_groups pullObdMsgsGrouped(const obd_messages& messages, int protocol);
// The data of one body: on CAN without its control byte; "" while the protocol is unknown.
QString l_pullOBDFromSingleMsg(const QString& body, int protocol);
// The data of one ECU's answer, its frames joined (ISO 15765-2 on CAN). "N/A" when a body is shorter than
// its frame kind needs, "" while the protocol is unknown. Several bodies on CAN of which the first is no
// first frame are one answer given more than once: the first body counts.
QString l_pullOBDFromSingleGroupedMsg(const QStringList& bodies, int protocol);
// The frames of a long answer on CAN in a row, each without its control byte: the low byte of its length,
// then its data.
QString joined_frames(const QStringList& bodies);
// The same of one shown without headers, in lines "0:...", "1:...": its data. Lines beyond the byte count are
// left out.
QString joined_segments(qsizetype bytes, const QStringList& segments);
// The data of a reply without headers that is such a byte count and such lines. "" when the first line is no
// hexadecimal number.
QString grab_CAN_msg(const QString& reply);
// The data after the header of one line, or nothing when the line is too short or belongs to another ECU than
// the one asked for ("" asks for any). `line`: a reply line with its header, blanks removed.
std::optional<QString> pull_PID_msg(const QString& line, const QString& this_PID,
                                    const QString& for_this_ECU);
// A mode 01 reply text for a computed value: PID "10" (air flow, grams a second; in imperial units pounds a
// minute) or "E4" (miles a gallon), "" for others. What is no number or below zero, neither of which a reply
// can hold, counts as 0.
QString encode_to_OBD(const QString& this_pid, double value, unit_system units);

// The data of a single message, shown with headers, without what hangs on behind it: on CAN the single frame
// cut to the length that its control byte gives (adapters show frames padded to eight bytes), on the older
// protocols without the check byte.
QString data_of_single_message(const QString& body, int protocol);

} // namespace brivant
