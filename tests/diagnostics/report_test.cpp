#include "diagnostics/report.h"

#include "base/process_state.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace {

const QString today = "21 Nov 2025 04:43:06";

QString described(const QString& code) {
    return code == "P0133" ? " O2 sensor slow" : "Code not found in our DB";
}

diagnostic_report report_of(int operation, const diagnostic_results& results) {
    return work_out_text_4_log(operation, results, today, described).value_or(diagnostic_report());
}

// Eleven monitors: three ready, two not, six not supported.
QList<readiness_row> eleven_monitors() {
    QList<readiness_row> rows{{"OK", "Misfire\r", "Continous"}, {"X", "Fuel system", "Continous"},
                              {"OK", "Components", "Continous"}, {"OK", "Catalyst", "Non-Continous"},
                              {"X", "EGR", "Non-Continous"}};
    for (int n = 0; n < 6; ++n)
        rows += {"N/A", "Evaporative system of the tank", "Non-Continous"};
    return rows;
}

} // namespace

TEST(report, of_trouble_codes) {
    diagnostic_results results;
    results.codesReadArray = {"P0133|7E8", "P3456|7E9"};
    results.pendingArray = {"P0133|7E8", "U0100|"};
    results.freezeArray = {"Freezed by: P0133| O2 sensor slow", "Engine RPM: 1726.00 RPM", "Fuel rail: N/A"};
    results.readinessFlagsArray = eleven_monitors();
    results.xtraInfoArray = {"Read on: today", "Interface: ELM327 v1.5"};

    QString expected = "------DTC Codes read:21 Nov 2025 04:43:06------------- \n"
                       "P0133 -  O2 sensor slow\n"
                       "P3456 - Code not found in our DB\n"
                       "[2]  P0133, P3456"
                       "\n\n....... Pending DTC Codes .......\n"
                       "P0133 -  O2 sensor slow\n"
                       "U0100 - Code not found in our DB"
                       "\n\n....... Freeze Data .......\n"
                       "Freezed by: P0133| O2 sensor slow \n    "
                       "Engine RPM: 1726.00 RPM \n    "
                       "Fuel rail: N/A \n    "
                       "\n\n....... Readiness Flags .......\n"
                       "Flag   Description               Group\n"
                       "OK    Misfire              Continous\n"
                       "X     Fuel system          Continous\n"
                       "OK    Components           Continous\n"
                       "OK    Catalyst             Non-Continous\n"
                       "X     EGR                  Non-Continous\n";
    for (int n = 0; n < 6; ++n)
        expected += "N/A   Evaporative system of the tank Non-Continous\n";
    expected += "3<font color=#66ff33>[OK]</font> out of 5 [avail] "
                "\n\n....... Extra Info......\n"
                "Read on: today\n"
                "Interface: ELM327 v1.5\n";
    const diagnostic_report report = report_of(op_read_codes, results);
    EXPECT_EQ(report.text, expected);
    EXPECT_EQ(report.title, "DTC");
    EXPECT_EQ(report.description, "Codes and flags");
    EXPECT_EQ(report.raw, "");
    EXPECT_EQ(report_of(op_pending_freeze, results).text, expected);
}

TEST(report, of_a_healthy_car_and_of_nothing_read) {
    const QString healthy = "------DTC Codes read:21 Nov 2025 04:43:06------------- \n"
                            "[0]  No codes"
                            "\n\n....... Pending DTC Codes .......\n"
                            "\n\n....... Freeze Data .......\n"
                            "%1"
                            "\n\n....... Readiness Flags .......\n"
                            "Flag   Description               Group\n"
                            "0<font color=#66ff33>[OK]</font> out of 0 [avail] "
                            "\n\n....... Extra Info......\n";
    diagnostic_results results;
    EXPECT_EQ(report_of(op_read_codes, results).text, healthy.arg(""));
    results.codesReadArray = {"No codes"};
    results.freezeArray = {"Not Supported or Data Not Available"};
    EXPECT_EQ(report_of(op_read_codes, results).text, healthy.arg("Not Supported or Data Not Available \n    "));
}

TEST(report, of_the_other_operations) {
    diagnostic_results results;
    results.vehInfoArray = {"No of ECUS : 1| Supporting Eng.: 2 PIDs", " Voltage: 12.3V", " VIN: 1G1JC5444R7252367",
                            " --- ECU(7E8) Eng.--- |has 2 available PIDs", "0C|Engine RPM|1726.00 RPM",
                            "1F|Run time|0 'Hours' 5 'mins'"};
    results.mode6Array = {"0|OBDMID(01) - Sensor|mV - (01)Threshold|Min(0.000) VAL[61.000] Max(122.000)  - Passed|0~61~122",
                          "1|Test ID(01) | CID(01) |Test val(16)\n Less than Min(32)   FAILED|32~16~min"};
    results.misfireArray = {"0|a|b|c|d"};
    results.o2XtraArray = {"damaged"};
    results.cur_CAN_raw_data = {"|01_01~61.000000 mV", "_02~1.000000 s", "|02_01~7.000000 "};

    const struct {
        int operation;
        const char* title;
        const char* description;
        const char* text; // after the heading
        const char* raw;
        const char* heading;
    } examples[] = {
        {op_vehicle_info, "Veh_info", "more parms",
         "No of ECUS : 1   Supporting Eng.: 2 PIDs\n"
         " Voltage: 12.3V  \n"
         " VIN: 1G1JC5444R7252367  \n"
         " --- ECU(7E8) Eng.---   has 2 available PIDs\n"
         "0C Engine RPM  1726.00 RPM\n"
         "1F Run time  0 'Hours' 5 'mins'\n",
         "", "Veh Info"},
        {op_mode6, "Mode6", "continous/non-continous test results",
         "OBDMID(01) - Sensor \n \t... mV - (01)Threshold \n\t Min(0.000) VAL[61.000] Max(122.000)  - Passed \n\n"
         "Test ID(01)  \n \t...  CID(01)  \n\t Test val(16)\n Less than Min(32)   FAILED \n\n",
         "", "Mode6"},
        {op_misfire, "Misfire", "EWMA is an average over driving cycles", "a \n \t... b \n\t c \n\n",
         "|01_01~61.000000 mV_02~1.000000 s|02_01~7.000000 ", "Misfire"},
        {op_o2_tests, "O2 Test", "Test results for O2 monitoring ", " \n \t...  \n\t  \n\n",
         "|01_01~61.000000 mV_02~1.000000 s|02_01~7.000000 ", "O2 test results"},
    };
    for (const auto& e : examples) {
        const diagnostic_report report = report_of(e.operation, results);
        EXPECT_EQ(report.title, e.title);
        EXPECT_EQ(report.description, e.description);
        EXPECT_EQ(report.text, QString("------%1 read:%2------------- \n%3").arg(e.heading, today, e.text));
        EXPECT_EQ(report.raw, e.raw);
    }
    for (const int silent : {0, 2, 3, 4, 7, 9, 10, 12, 13, 14, 20})
        EXPECT_FALSE(work_out_text_4_log(silent, results, today, described).has_value()) << silent;
}
