#include "base/string_table.h"
#include "diagnostics/mode6_test.h"

namespace brivant {

namespace {

talk find_sensors(diagnostic_talk& car, QStringList& monitors) {
    return find_monitors(car,
                         {.support_request = QStringLiteral("06 00"),
                          .first = 0x01,
                          .count = 16,
                          .map = 0,
                          .no_data = localised(QStringLiteral("DLG_NOT_SUPPTED_NOR_AVAILABLE"))},
                         monitors);
}

} // namespace

talk work_O2_mode(diagnostic_talk& car) {
    return work_mode6_test(car, {.starting = QStringLiteral("Starting O2 xtra reading "),
                                 .toast = QStringLiteral("%@ Read O2 ...         "),
                                 .querying = QStringLiteral("Querying O2  items:  %d/%d"),
                                 .log_heading = QStringLiteral("------O2 Xtra read:%@------------- \n"),
                                 .which = part::o2,
                                 .find_identifiers = find_sensors});
}

} // namespace brivant
