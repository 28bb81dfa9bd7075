#include "diagnostics/mode6_records.h"

#include "base/string_table.h"
#include "base/text_resources.h"
#include "tests/support/print_qt.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace brivant {

namespace {

constexpr int can = 6;
constexpr int iso = 3;

// The frames of an answer as an adapter shows them, the last one padded to eight bytes.
QStringList frames(const QString& data) {
    const auto byte = [](qsizetype value) {
        return QString::number(value, 16).toUpper().rightJustified(2, '0');
    };
    QStringList bodies{"10" + byte(data.size() / 2) + data.first(12)};
    for (qsizetype at = 12; at < data.size(); at += 14)
        bodies += byte(0x20 + bodies.size() % 16) + data.mid(at, 14).leftJustified(14, '5');
    return bodies;
}

// Thirteen misfire tests of one answer; number n has the value n.
QString thirteen_records() {
    QString data = "46";
    for (int n = 0; n < 13; ++n)
        data += "A20B24" + QString("%1").arg(n, 4, 16, QChar('0')).toUpper() + "00000020";
    return data;
}

QList<test_row> read(const QStringList& bodies, int protocol, int index = 0) {
    static const text_resources lists;
    const QString data = l_pullOBDFromSingleGroupedMsg(bodies, protocol);
    return handle_a_mode6_TestID({"7E8", bodies, protocol, data}, index, lists);
}

QStringList texts(const QList<test_row>& tests) {
    QStringList rows;
    for (const test_row& test : tests)
        rows += row_text(part::mode6, test);
    return rows;
}

QString raw(const QList<test_row>& tests) {
    answer one;
    for (const test_row& test : tests)
        one.rows += test;
    diagnostic_results results;
    results.answers[part::o2] = {one};
    return raw_records(results, part::o2);
}

} // namespace

TEST(mode6_records, rows_on_can) {
    const struct {
        const char* record;
        const char* row;
        const char* compact;
    } examples[] = {
        {"01010A01F4000003E8",
         "7|OBDMID(01) - Exhaust gas sensor monitor bank 1 sensor 1|mV - (01)Rich to lean sensor threshold "
         "voltage "
         "(constant)|Min(0.000) VAL[61.000] Max(122.000)  - Passed|0.000~61.000~122.000",
         "|01_01~61.000000 mV"},
        {"A20B01000300000002", // no unit: a blank before the values
         "7|OBDMID(A2) - Misfire cylinder 1 data| - (0B)EWMA misfire counts for last ten driving cycles "
         "(calculated) |Min(0.000) VAL[3.000] Max(2.000)  - FAILED|0.000~3.000~2.000",
         "|A2_0B~3.000000 "},
        {"01E01F012601180130", // a unit with a blank in it, a test of the maker's own
         "7|OBDMID(01) - Exhaust gas sensor monitor bank 1 sensor 1|A/F ratio - (E0)Manufacturer defined test"
         "|Min(14.000) VAL[14.700] Max(15.200)  - Passed|14.000~14.700~15.200",
         "|01_E0~14.700000 A/F ratio"},
    };
    for (const auto& [record, row, compact] : examples) {
        const QList<test_row> result = read(frames(QString("46") + record), can, 7);
        EXPECT_EQ(texts(result).join('\n'), row);
        EXPECT_EQ(raw(result), compact);
    }
}

TEST(mode6_records, verdict_on_can) {
    const struct {
        const char* numbers; // scaling, value, minimum, maximum
        bool passed;
    } examples[] = {
        {"0A03E8000003E8", true},  {"0A03E803E803E8", true},  {"0A03E9000003E8", false},
        {"0A000000010002", false}, {"010005000A0000", false}, // the limits the wrong way round
        {"05000200000001", true},                             // compared as shown: 0.000 and 0.000
        {"16018F01900200", false},                            // -0.1 is below 0
        {"81FFFF00000001", false},                            // values of signed scalings stay as they come
    };
    for (const auto& [numbers, passed] : examples) {
        const QList<test_row> rows = read(frames(QString("460101") + numbers), can);
        ASSERT_EQ(rows.size(), 1);
        EXPECT_EQ(rows[0].passed, passed) << numbers;
        EXPECT_TRUE(rows[0].text().endsWith(passed ? " - Passed" : " - FAILED")) << numbers;
    }
}

TEST(mode6_records, answer_of_thirteen_records_whole_and_cut) {
    const QStringList bodies = frames(thirteen_records()); // seventeen frames
    const QList<test_row> whole = read(bodies, can);
    ASSERT_EQ(whole.size(), 13);
    EXPECT_EQ(whole[12].value, "12.000");
    EXPECT_EQ(raw(whole).left(44), "|A2_0B~0.000000 counts_0B~1.000000 counts_0B");

    const auto without = [&bodies](qsizetype frame) {
        QStringList rest = bodies;
        rest.removeAt(frame);
        return rest;
    };
    // No result is made up of what did not come.
    const std::pair<QStringList, int> cut[] = {
        {without(16), 12},
        {bodies.first(16) + QStringList{bodies[16].chopped(2)}, 12},
        {without(5), 3},
        {bodies.first(2), 1},
        {without(1), 0},
        {bodies.first(1), 0},
        {QStringList{"10"} + bodies.mid(1), 0},
    };
    for (const auto& [rest, rows] : cut)
        EXPECT_TRUE(read(rest, can) == whole.first(rows));

    // One record that cannot be read leaves the others alone.
    QString noisy = thirteen_records();
    noisy.replace(2 + 18 * 4 + 6, 1, "?");
    EXPECT_EQ(read(frames(noisy), can).size(), 12);
}

TEST(mode6_records, what_is_no_answer_gives_no_row) {
    const QStringList none[] = {{},           {""},    {"037F0612"},
                                {"0346A100"}, {"N/A"}, frames("49020131473148433534343452373235")};
    for (const QStringList& bodies : none)
        EXPECT_TRUE(read(bodies, can).isEmpty()) << bodies.join(' ').toStdString();
    EXPECT_TRUE(read({"7F0612AA"}, iso).isEmpty());
    EXPECT_TRUE(read({"46018100?"}, iso).isEmpty());
    EXPECT_TRUE(read(frames(thirteen_records()), 13).isEmpty());
}

TEST(mode6_records, rows_on_older_protocols) {
    const struct {
        QStringList bodies;
        QStringList rows;
    } examples[] = {
        {{"46018100100020"}, {"Test ID(01) | CID(01) |Test val(16)\n Less than Min(32)   FAILED|32~16~min"}},
        {{"460A85FFFF8000C5"},
         {"Test ID(0A) | CID(05) |Test val(65535)\n Greater than Min(32768)   Passed|32768~65535~min"}},
        {{"46050200300020C5"},
         {"Test ID(05) | CID(02) |Test val(48)\n Greater than Max(32)   FAILED|32~48~max"}},
        {{"46050200100020C5"},
         {"Test ID(05) | CID(02) |Test val(16)\n Less than Max(32)   Passed|32~16~max"}},
        // A value that equals its limit passes.
        {{"46058200200020C5"},
         {"Test ID(05) | CID(02) |Test val(32)\n Greater than Min(32)   Passed|32~32~min"}},
        {{"46050200200020C5"},
         {"Test ID(05) | CID(02) |Test val(32)\n Less than Max(32)   Passed|32~32~max"}},
        {{"4601810010"}, {"Test ID(01) | CID(01) |Test val(16)\n Greater than Min(0)   Passed|0~16~min"}},
        // Components of one test
        {{"46018100100020C5", "7F0612C5", "46010200100020C5"},
         {"Test ID(01) | CID(01) |Test val(16)\n Less than Min(32)   FAILED|32~16~min",
          "Test ID(01) | CID(02) |Test val(16)\n Less than Max(32)   Passed|32~16~max"}},
        // Several tests: one byte further on
        {{"46010781000A0014", "4602088200200010"},
         {"Test ID(07) | CID(01) |Test val(10)\n Less than Min(20)   FAILED|20~10~min",
          "Test ID(08) | CID(02) |Test val(32)\n Greater than Min(16)   Passed|16~32~min"}},
    };
    for (const auto& [bodies, rows] : examples) {
        const QList<test_row> result = read(bodies, iso, 3);
        EXPECT_EQ(texts(result), QStringList(rows).replaceInStrings(QRegularExpression("^"), "3|"));
        EXPECT_EQ(raw(result), "");
    }
}

TEST(mode6_records, detail_text) {
    const struct {
        const char* limits;
        const char* unit;
        bool failed;
        std::array<const char*, 5> places;
    } examples[] = {
        {"0.000~61.000~122.000", "mV", false, {"#3ddf00", "61", "Max: 122", "mV", "Min:  0"}},
        {"0.000~1234.567~2.500", "<V>", true, {"red", "1235", "Max:  2", "&lt;V&gt;", "Min:  0"}},
        {"32~16~min", "", true, {"red", "16", "", "&lt;  32(min)", ""}},
        {"32~48~min", "", false, {"#3ddf00", "48", "", "&gt;  32(min)", ""}},
        {"32~48~max", "", true, {"red", "48", "", "&gt;  32(max)", ""}},
        {"32~9~max", "", false, {"#3ddf00", " 9", "", "&lt;  32(max)", ""}},
    };
    const QString form = localised("BV_MODE6_RESULT");
    ASSERT_EQ(form.count("%@"), 5);
    for (const auto& [limits, unit, failed, p] : examples)
        EXPECT_EQ(work_out_result_html(limits, unit, failed), fill(form, {p[0], p[1], p[2], p[3], p[4]}));
}

} // namespace brivant
