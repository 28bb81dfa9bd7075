#pragma once

#include "diagnostics/diagnostic_results.h"

namespace brivant {

class text_resources;

// The answers to service 06 (SAE J1979, on-board monitoring test results) as rows.
// `groupIdx`: the index of the test asked for, which each row carries.
// CAN: records of nine bytes, each OBDMID, TID, UASID, value, minimum, maximum; a record that is cut, or lies
// behind a lost frame, is left out. Older protocols: a message a test, TID, component, value and one limit; a
// short message is filled up with "0".
QList<test_row> handle_a_mode6_TestID(const ecu_said& ecu, int groupIdx, const text_resources& lists);

// The names of the monitor and the test of a CAN row.
void name_the_test(test_row& row, const text_resources& lists);

// A compact copy of the CAN records of a part, an answer after the other: "|01_83~6.25 mA_84~...".
QString raw_records(const diagnostic_results& results, part which);

// The detail text of a row as HTML, from its triple.
QString work_out_result_html(const QString& limits, const QString& units, bool isFail);

} // namespace brivant
