#include "diagnostics/work_O2_mode.h"

#include "base/string_table.h"

work_O2_mode::work_O2_mode(operation_context& its_context, diagnostic_host& its_host)
    : monitor_range_test(its_context, its_host,
                         {.starting = QStringLiteral("Starting O2 xtra reading "),
                          .toast = QStringLiteral("%@ Read O2 ...         "),
                          .querying = QStringLiteral("Querying O2  items:  %d/%d"),
                          .log_heading = QStringLiteral("------O2 Xtra read:%@------------- \n"),
                          .failure = QStringLiteral("work_o2_mode::Did not fully complete: ( %@)"),
                          .list = QStringLiteral("o2"),
                          .kept = result_list::o2},
                         its_host.results().o2XtraArray,
                         {.support_request = QStringLiteral("06 00"),
                          .first = 0x01,
                          .count = 16,
                          .map = 0,
                          .no_data = localised(QStringLiteral("DLG_NOT_SUPPTED_NOR_AVAILABLE"))}) {}
