#include "base/string_table.h"
#include "diagnostics/mode6_test.h"
#include "obd/mode6_scaling.h"
#include "operations/inner_process_pid_support.h"

namespace brivant {

namespace {

talk find_tests(diagnostic_talk& car, QStringList& tests) {
    obd_groups found;
    co_await inner_process_pid_support(car, QStringLiteral("06"), found);
    if (!found.isEmpty())
        tests = found[car.toolies.findEngineEcuIdx(found)].pidSet;
    fixArrayForMode6(tests);
    if (tests.isEmpty())
        co_await nothing_there(car, localised(QStringLiteral("DLG_NOT_SUPPTED_NOR_AVAILABLE")),
                               sound_nothing_found);
}

} // namespace

talk work_mode6_support(diagnostic_talk& car) {
    return work_mode6_test(car, {.starting = QStringLiteral("Starting Mode 6 "),
                                 .toast = QStringLiteral("%@ Read Mode6 ...      "),
                                 .querying = QStringLiteral("Querying Mode6  items:  %d/%d"),
                                 .log_heading = QStringLiteral("------Mode 6 read:%@------------- \n"),
                                 .which = part::mode6,
                                 .retries_silence = true,
                                 .counts_from = 0,
                                 .find_identifiers = find_tests});
}

} // namespace brivant
