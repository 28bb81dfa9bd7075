#include "diagnostics/work_mode6_support.h"

#include "base/string_table.h"
#include "obd/mode6_scaling.h"

work_mode6_support::work_mode6_support(operation_context& its_context, diagnostic_host& its_host,
                                       inner_process_pid_support& its_pid_loop)
    : mode6_test(its_context, its_host,
                 {.starting = QStringLiteral("Starting Mode 6 "),
                  .toast = QStringLiteral("%@ Read Mode6 ...      "),
                  .querying = QStringLiteral("Querying Mode6  items:  %d/%d"),
                  .log_heading = QStringLiteral("------Mode 6 read:%@------------- \n"),
                  .failure = QStringLiteral("work_mode6_support::Did not fully complete: ( %@)"),
                  .list = QStringLiteral("mode6"),
                  .kept = result_list::mode6,
                  .retries_silence = true,
                  .counts_from = 0},
                 its_host.results().mode6Array),
      pid_loop(its_pid_loop) {}

void work_mode6_support::ask_for_support() {
    identifiers.clear();
    pid_loop.start(QStringLiteral("06"), QString(), 201,
                   [this](const obd_groups& found) { identifiers = found; });
}

void work_mode6_support::support_answered(const QString&) {
    QStringList tests;
    if (!identifiers.isEmpty())
        tests = identifiers[context.toolies.findEngineEcuIdx(identifiers)].pidSet;
    fixArrayForMode6(tests);
    if (tests.isEmpty())
        return nothing_there(localised(QStringLiteral("DLG_NOT_SUPPTED_NOR_AVAILABLE")), sound_nothing_found);
    query(tests);
}
