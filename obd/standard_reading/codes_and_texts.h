#pragma once

#include "obd/standard_reading/ecu_answers.h"

#include <QStringList>

namespace brivant {

// Trouble codes and vehicle information as SAE J1979 and J2012 define them.

struct ecu_codes {
    QString ecu;
    QStringList codes; // "P0133"
    QString fault;     // why there may be more, or none could be read; "" when all is well
    bool operator==(const ecu_codes&) const = default;
};
// The codes of services 03 (confirmed), 07 (pending) and 0A (permanent), one element an ECU that answered.
QList<ecu_codes> read_trouble_codes(int service, const raw_reply& reply);

// The two bytes of a code as its name.
QString trouble_code_name(int first_byte, int second_byte);

enum class info_type { vin = 0x02, calibration_id = 0x04, calibration_number = 0x06, ecu_name = 0x0A };

struct ecu_info {
    QString ecu;
    QStringList items; // texts; calibration verification numbers as eight hex digits
    QString fault;
    bool operator==(const ecu_info&) const = default;
};
// The texts of service 09, one element an ECU that answered. An item that was never programmed (all FF) or
// holds bytes that are no text is a fault.
QList<ecu_info> read_vehicle_info(info_type type, const raw_reply& reply);

} // namespace brivant
