#include "diagnostics/report.h"

#include "operations/operation_code.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

// What the conversations, which compare whole reports, do not come by.

namespace {

const QString today = "21 Nov 2025 04:43:06";

diagnostic_report report_of(int operation, const diagnostic_results& results) {
    const auto described = [](const QString& code) { return "about " + code; };
    return work_out_text_4_log(operation, results, today, described).value_or(diagnostic_report());
}

void put(diagnostic_results& results, part which, const QList<result_row>& rows) {
    results.answers[which] = {facts(rows)};
}

} // namespace

TEST(report, of_several_codes_and_unready_monitors) {
    diagnostic_results results;
    put(results, part::codes, {code_row{"P0133", "7E8"}, code_row{"P3456", "7E9"}});
    put(results, part::pending, {code_row{"P0171", "7E8"}, code_row{"U0100", ""}});
    put(results, part::freeze, {words_row{"Not Supported or Data Not Available"}});
    results.readinessFlagsArray = {{"OK", "Misfire\r", "Continous"},
                                   {"X", "Evaporative system of the tank", "Non-Continous"}};
    for (const char* state : {"OK", "OK", "X", "N/A", "N/A", "N/A", "N/A", "N/A", "N/A"})
        results.readinessFlagsArray += {state, "EGR", "Non-Continous"};
    const QString expected = "------DTC Codes read:21 Nov 2025 04:43:06------------- \n"
                             "P0133 - about P0133\nP3456 - about P3456\n[2]  P0133, P3456"
                             "\n\n....... Pending DTC Codes .......\n"
                             "P0171 - about P0171\nU0100 - about U0100"
                             "\n\n....... Freeze Data .......\nNot Supported or Data Not Available \n    "
                             "\n\n....... Readiness Flags .......\nFlag   Description               Group\n"
                             "OK    Misfire              Continous\n"
                             "X     Evaporative system of the tank Non-Continous\n";
    const QString report = report_of(op_read_codes, results).text;
    EXPECT_TRUE(report.startsWith(expected)) << report.toStdString();
    EXPECT_TRUE(report.endsWith("\n3<font color=#66ff33>[OK]</font> out of 5 [avail] "
                                "\n\n....... Extra Info......\n"));
}

TEST(report, of_nothing_read) {
    diagnostic_results results;
    const QString nothing = report_of(op_read_codes, results).text;
    EXPECT_TRUE(
        nothing.startsWith("------DTC Codes read:21 Nov 2025 04:43:06------------- \n[0]  Not read\n\n"));
    EXPECT_TRUE(nothing.contains("\n0<font color=#66ff33>[OK]</font> out of 0 [avail] "));
    put(results, part::codes, {words_row{"No codes"}});
    EXPECT_EQ(report_of(op_pending_freeze, results).text, QString(nothing).replace("Not read", "No codes"));

    // Quotes are doubled on the way into the database, not here.
    put(results, part::vehicle, {value_row{"1F", "Run time", "0 'Hours' 5 'mins'", {}}});
    EXPECT_TRUE(report_of(op_vehicle_info, results).text.endsWith("\n1F Run time  0 'Hours' 5 'mins'\n"));
    for (const int silent : {0, 2, 3, 4, 7, 9, 10, 12, 13, 14, 20})
        EXPECT_EQ(report_of(silent, results).title, "") << silent;
}

} // namespace brivant
