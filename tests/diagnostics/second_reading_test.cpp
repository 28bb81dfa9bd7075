#include "diagnostics/second_reading.h"

#include "tests/diagnostics/diagnostic_bench.h"

#include <gtest/gtest.h>

namespace brivant {

// What the conversations, which read a list after it is complete, do not come by.

namespace {

struct read_twice : adapter_bench {
    diagnostic_results results;

    void show_standard(bool shown) { profile.defaults.set(setting::standard_reading, shown); }
};

answer rpm(const QString& digits, const QList<result_row>& rows) {
    return {"010C", reply({"7E804410C" + digits, 6, true}), "7E8", rows};
}

value_row rpm_row(const QString& value) {
    return {"0C", "Engine RPM", value, {}};
}

QStringList texts(const QList<noted_row>& rows) {
    return row_texts(part::vehicle, plain(rows));
}

} // namespace

TEST(second_reading, follows_a_list_that_grows_and_one_that_begins_anew) {
    read_twice bench;
    QList<answer>& answers = bench.results.answers[part::vehicle];
    second_reading reading(part::vehicle, bench.results, bench.toolies);
    EXPECT_EQ(reading.line(), "");
    answers = {facts({words_row{"heading"}})};
    reading.reload();
    EXPECT_EQ(texts(reading.standard_rows()), QStringList{"heading"});
    answers += rpm("1AF8", {rpm_row("99.00 RPM")});
    reading.reload();
    EXPECT_EQ(texts(reading.standard_rows()), (QStringList{"heading", "0C|Engine RPM|1726.00 rpm"}));
    answers += rpm("0000", {}); // no row came of it
    answers += facts({words_row{"another heading"}});
    reading.reload();
    EXPECT_EQ(texts(reading.standard_rows()).mid(2),
              (QStringList{"0C|Engine RPM|0.00 rpm", "another heading"}));
    EXPECT_EQ(reading.shown()[1].note, "By SAE J1979: 1726.00 rpm");
    bench.show_standard(true);
    EXPECT_EQ(reading.shown()[1].note, "By SAE J1979: 1726.00 rpm") << "only a reload changes what is shown";
    reading.reload();
    EXPECT_EQ(reading.shown()[1].note, "The program's own reading: 99.00 RPM");
    EXPECT_EQ(reading.shown()[2].note, "The program's own reading: no value");

    answers.clear();
    reading.reload();
    EXPECT_TRUE(reading.shown().isEmpty());
    EXPECT_EQ(reading.line(), "");
    answers = {rpm("1AF8", {rpm_row("1726.00 RPM")})};
    reading.reload();
    EXPECT_EQ(texts(reading.shown()), QStringList{"0C|Engine RPM|1726.00 rpm"});
    EXPECT_EQ(texts(reading.own_rows()), QStringList{"0C|Engine RPM|1726.00 RPM"});
    EXPECT_FALSE(reading.differs());
}

// Each ECU has scales of its own, which hold for the values before them too.
TEST(second_reading, scales_by_what_the_ecu_tells) {
    read_twice bench;
    const auto told = [](const char* ecu, const char* pid, const char* data) {
        const QString reply_text = QStringLiteral("%1%2").arg(ecu, data);
        return answer{
            QStringLiteral("01") + pid, reply({reply_text, 6, true}), ecu, {value_row{pid, "", "", {}}}};
    };
    bench.results.answers[part::vehicle] = {told("7E8", "0B", "03410B8C"), told("7E9", "0B", "03410B8C")};
    second_reading reading(part::vehicle, bench.results, bench.toolies);
    bench.results.answers[part::vehicle] += told("7E8", "4F", "06414F00000019");
    reading.reload();
    EXPECT_EQ(texts(reading.standard_rows()).mid(0, 2),
              (QStringList{"0B|Intake manifold absolute pressure|40.5 in.Hg",
                           "0B|Intake manifold absolute pressure|41.3 in.Hg"}));
}

TEST(second_status, counts_every_ecu_and_names_the_monitors_that_differ) {
    read_twice bench;
    EXPECT_EQ(read_status_again(bench.results, bench.toolies).line, "") << "nothing was read";
    const auto own = bench.toolies.handle_readiness_codes("076500");
    const struct {
        const char* reply;
        QList<readiness_row> monitors;
        const char* line; // beside an own "OFF, 0 codes"
    } rows[] = {
        {"7E8064101000765 00\r7E906410100000000", own, ""},
        {"7E8064101000765 04\r7E906410101040000", own,
         "By SAE J1979 the monitor status says: MIL OFF, 1 code, Evaporative system not complete"},
        {"7E8064101000F0000", bench.toolies.handle_readiness_codes("0F0000"),
         ""}, // a diesel's, two of them reserved
        {"7E8037F0112", {}, ""},
    };
    for (const auto& row : rows) {
        bench.results.readinessFlagsArray = row.monitors;
        bench.results.answers[part::readiness] = {
            {"0101", reply({QString(row.reply).remove(' '), 6, true}), {}, {}}};
        const second_status status = read_status_again(bench.results, bench.toolies);
        EXPECT_EQ(status.line.isEmpty(), *row.line == 0);
        EXPECT_TRUE((u' ' + status.line).startsWith(QString(u' ') + row.line)) << status.line.toStdString();
        EXPECT_EQ(status.shown().monitors, row.monitors);
    }
    bench.show_standard(true);
    const second_status status = read_status_again(bench.results, bench.toolies);
    EXPECT_FALSE(status.own.is_known || status.standard.is_known);
    EXPECT_EQ(status.faults,
              "No ECU has told its lamp, codes and monitors (7E8: refused by the ECU: request not "
              "supported (7F 01 12)).");
}

TEST(second_reading, report_says_which_reading_it_holds) {
    diagnostic_bench bench;
    bench.results.answers[part::codes] = {{"03",
                                           reply({"7E8100843030133 0220\r7E82103000000000000", 6, true}),
                                           {},
                                           {code_row{"P0133", "7E8"}, code_row{"P0300", "7E8"}}}};
    const QString own = bench.controller.report_of(op_read_codes).text;
    EXPECT_TRUE(own.contains("[2]  P0133, P0300\n\n")) << own.toStdString();
    EXPECT_TRUE(own.contains("....... In these replies by SAE J1979 .......\nConfirmed: P0133 -"))
        << own.toStdString();
    bench.profile.defaults.set(setting::standard_reading, true);
    bench.results.answers[part::permanent] = {{"0A", reply({"7E8044A010133", 6, true}), {}, {}}};
    const QStringList lines = bench.controller.report_of(op_read_codes).text.split('\n');
    EXPECT_EQ(lines.value(1), "Standard reading: values and codes as SAE J1979 reads the replies.");
    EXPECT_TRUE(lines.contains("[3]  P0133, P0220, P0300"));
    const qsizetype permanent = lines.indexOf("....... Permanent DTC Codes .......");
    ASSERT_GT(permanent, 0);
    EXPECT_TRUE(lines.value(permanent + 1).startsWith("P0133 - "));
}

} // namespace brivant
