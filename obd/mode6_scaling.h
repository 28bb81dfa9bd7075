#pragma once

#include <QString>
#include <QStringList>

namespace brivant {

class text_resources;

// The parts of a service 06 test record on CAN (SAE J1979): a raw value with its unit and scaling identifier
// (UASID), a monitor identifier (OBDMID) and a test identifier (TID).

// The scaled value with six decimals, and when `with_units` a blank and the unit: "122.000000 mV". Where
// there is no unit the text ends in the blank. `uasid`: hex byte text. `this_value`: hex text as received.
// Hex that cannot be read counts as 0; an identifier without a scaling gives the raw value.
QString CAN_scale_and_units(const QString& uasid, const QString& this_value, bool with_units);

// What the monitor or the test is called. `identifier`: hex byte text. A line "XX|text" of the list
// "OBDMID_CAN" or "TID_CAN" speaks for its own identifier and all up to the next line's, so that the last
// line only ends the list. "N/A" outside the lines and when the list or its text is missing.
QString grab_CAN_mode6_OBDMID_TESTID_description(const QString& identifier, bool is_OBDMID,
                                                 const text_resources& lists);

// Removes the identifiers 00, 20, ... E0 (hex texts), which ask what is supported and are no tests. Hex that
// cannot be read counts as 00.
void fixArrayForMode6(QStringList& obdmids);

} // namespace brivant
