#include "diagnostics/work_misfire_reading.h"

work_misfire_reading::work_misfire_reading(operation_context& its_context, diagnostic_host& its_host)
    : monitor_range_test(its_context, its_host,
                         {.starting = QStringLiteral("Starting Read Misfire"),
                          .toast = QString(),
                          .querying = QStringLiteral("Querying Misfire  items:  %d/%d"),
                          .log_heading = QStringLiteral("------Misfire read:%@------------- \n"),
                          .failure = QStringLiteral("work_misfire::Did not fully complete: ( %@)"),
                          .list = QStringLiteral("misfire"),
                          .kept = result_list::misfire},
                         its_host.results().misfireArray,
                         {.support_request = QStringLiteral("06 A0"),
                          .first = 0xA1,
                          .count = 30,
                          .map = 5,
                          .no_data = QStringLiteral("Not Supported or Not Available")}) {}
