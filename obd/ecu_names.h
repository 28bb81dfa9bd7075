#pragma once

#include "base/shared_types.h"

namespace brivant {

// Which ECU a header names. `line` is a reply line with its header, blanks removed.

// "Engine", "Transmission", or "ECU=" and its address.
QString pull_ECU(const QString& line);
// "Eng.", "Trans." or "".
QString l_pull_ECU(const QString& header, int protocol);
bool isThisEngineHeader(const QString& header, int protocol);
// The index of the first group with an engine header; 0 when none has one.
qsizetype findEngineEcuIdx(const obd_groups& groups, int protocol);
// 0 for the engine, 1 for the transmission, -1 for any other ECU; decided by the header's length alone.
int thisHeaderIsEngOrTranny(const QString& header);
// 0 in every case.
qsizetype findEngIdxFromGroupedMsg(const obd_groups& groups, qsizetype thisEngIdx);
// True when both headers name the same ECU. On ISO 14230-4 (protocols 4 and 5) the lower six bits of the
// first header byte are the message's length, which is left out of the comparison.
bool same_ecu(const QString& header, const QString& other, int protocol);
// How an ECU is shown: its header without the message's length that ISO 14230 puts into the first byte, so
// that one ECU has one name. "86F110" and "87F110" give "80F110"; other headers stay as they are.
QString ecu_label(const QString& header);

} // namespace brivant
