#pragma once

#include "obd/standard_reading/ecu_answers.h"

#include <optional>

namespace brivant {

// Service 06 test results (SAE J1979). Values are in the unit of their scaling identifier (UASID), those with
// bit 7 set signed; the older protocols send raw numbers.
struct ecu_test {
    QString ecu;
    int monitor = 0;  // OBDMID; on the older protocols the TID
    int test = 0;     // TID; on the older protocols the component
    int scaling = -1; // UASID, -1 on the older protocols
    double value = 0;
    std::optional<double> minimum = std::nullopt;
    std::optional<double> maximum = std::nullopt;
    QString unit = QString();
    int decimals = 0;

    bool passed() const { return (!minimum || value >= *minimum) && (!maximum || value <= *maximum); }
};
struct ecu_tests {
    QList<ecu_test> tests;
    QString fault; // why there may be more; "" when all is well
};
// The records of every ECU. A record whose scaling identifier the standard does not define is a fault.
ecu_tests read_tests(const raw_reply& reply);
// "61.000 mV"
QString test_value_text(const ecu_test& test, double value);

} // namespace brivant
