#pragma once

#include "base/shared_types.h"
#include <QMap>
#include <optional>

namespace brivant {

class reply;

// Trouble codes (DTCs) from the replies to "03" (confirmed) and "07" (pending), SAE J1979 and J2012.
// `protocol`: the adapter's protocol number, -1 while unknown.

// "0133" gives "P0133", "C1A4" gives "U01A4"; the digits stay as written. "" for other than four hex digits.
QString pull_DTC_code(QStringView four);

// The codes of each ECU that answered, in the order of the ECUs. `answers`: with headers.
obd_groups l_workoutReadCodes(const reply& answers);

// The codes of one ECU. `messages`: its message bodies, on CAN with the control byte. Groups "0000" are
// padding and left out. An answer that ends too early gives the codes read so far; an unknown protocol none.
QStringList l_pullErrorsFromSingleMsg(const QStringList& messages, int protocol);

// The list of the ECU with that header: "N/A" alone, or nothing, when no such ECU is there.
QStringList pull_dtc_body_by_ECU(const obd_groups& groups, const QString& thisECU, int protocol);
std::optional<QStringList> pull_dtcGruped_pidSet_by_ECU(const obd_groups& groups, const QString& thisECU,
                                                        int protocol);

// The codes of a reply without headers, all in one list. `mode`: "03" or "07". `protocol_description`: the
// answer to "AT DP". On CAN of several ECUs the first one counts. On the older protocols the first code of a
// line is always listed, so that no code at all shows as "P0000".
QStringList work_reply_to_error_codes_pid(const QString& mode, const QString& this_reply,
                                          const QString& protocol_description);

// What the dictionary says about the code; when it says nothing, "Code not found in our DB" and what the
// code's form tells: whether its maker defines it, and which system it is of. The row that stands for "no
// codes" gives the hint to look for pending ones.
QString look_upCode(const QString& code, const QMap<QString, QString>& this_dict);

} // namespace brivant
