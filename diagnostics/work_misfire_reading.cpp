#include "diagnostics/mode6_test.h"

namespace brivant {

namespace {

talk find_counters(diagnostic_talk& car, QStringList& counters) {
    return find_monitors(car,
                         {.support_request = QStringLiteral("06 A0"),
                          .first = 0xA1,
                          .count = 30,
                          .map = 5,
                          .no_data = QStringLiteral("Not Supported or Not Available")},
                         counters);
}

} // namespace

talk work_misfire_reading(diagnostic_talk& car) {
    return work_mode6_test(car, {.starting = QStringLiteral("Starting Read Misfire"),
                                 .toast = QString(),
                                 .querying = QStringLiteral("Querying Misfire  items:  %d/%d"),
                                 .log_heading = QStringLiteral("------Misfire read:%@------------- \n"),
                                 .which = part::misfire,
                                 .find_identifiers = find_counters});
}

} // namespace brivant
