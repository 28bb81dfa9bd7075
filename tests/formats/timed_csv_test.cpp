#include "tests/formats/run_bench.h"

#include <cmath>
#include <limits>
#include <random>

namespace brivant {

namespace {

run_head two_columns() {
    run_head head = drive_head();
    head.columns.removeLast();
    return head;
}

const QByteArray first_line = "Time,RPM,KPH,\"Engine RPM offset (ms)\",\"Vehicle speed offset "
                              "(ms)\",Mark,\"About: Brivant Lite 0.1.0; start "
                              "2013-05-01T14:04:07.123Z; vehicle Golf; values in the program's own reading; "
                              "metric units; with offsets; columns "
                              "0C Engine RPM [RPM]|0D Vehicle speed [kph]\"\r\n";

} // namespace

TEST(timed_csv, byte_for_byte) {
    const QList<run_item> items{
        timed_sweep{0, {850.0, 0.1}, {12.5, 1e-7}, {}}, timed_sweep{140.25, {std::nullopt, NAN}, {}, {}},
        timed_mark{141, "Ramp, \"left\""}, timed_sweep{1'000'000, {-0.5, 1e21}, {0, 70.125}, {}}};
    EXPECT_EQ(written(run_format::kind::timed_csv, two_columns(), items),
              first_line + "0.000000,850,0.1,12.5,1e-07,,\r\n"
                           "0.140250,,,,,,\r\n"
                           "0.141000,,,,,\"Ramp, \"\"left\"\"\",\r\n"
                           "1000.000000,-0.5,1e+21,0,70.125,,\r\n");
}

// What is written is read back: the same numbers to the last bit, times to the microsecond.
TEST(timed_csv, round_trip) {
    std::mt19937 random(15);
    run_head head = drive_head();
    head.vehicle = "  \"Ol' | Blue\"; [2,4] \\ \u00E4\n";
    head.by_standard = true;
    head.units = unit_system::imperial;
    head.has_positions = true;
    head.columns += {{"E4", "Fuel, \"eco\"; [x|y] \\u", "l/100 km by speed; fuel"}, {"1234", "", ""}};
    const qsizetype width = head.columns.size();

    const auto any_number = [&] {
        const auto bits = std::uniform_int_distribution<quint64>()(random);
        const double number = std::bit_cast<double>(bits);
        return random() % 3 == 0 ? double(int(random()) % 10000) / 100 : std::isfinite(number) ? number : 0.0;
    };
    QList<run_item> items;
    double ms = -500; // kept from before a trigger
    for (int i = 0; i < 3000; ++i) {
        ms = std::round((ms + double(random() % 1'000'000) / 1000) * 1000) / 1000;
        timed_sweep sweep{ms, std::vector<std::optional<double>>(width), {}, {}};
        if (i % 7 == 0) {
            items += sweep; // a gap
            items += timed_mark{ms, QString("mark %1, \u20AC\"").arg(i)};
            continue;
        }
        for (auto& value : sweep.values)
            value = random() % 10 == 0 ? std::nullopt : std::optional(any_number());
        for (qsizetype column = 0; column < width; ++column)
            sweep.offsets_ms.push_back(double(random() % 200'000) / 1000);
        if (i % 3 == 0)
            sweep.position = geo_position{52.0 + i / 7e4, -13.0 - i / 7e4, any_number(), std::nullopt,
                                          any_number(),   std::nullopt,    -1.0 * i};
        items += sweep;
    }
    const read_run back = read_timed_csv(written(run_format::kind::timed_csv, head, items));
    EXPECT_EQ(back.problem, "");
    EXPECT_EQ(back.head, head);
    ASSERT_EQ(back.items.size(), items.size());
    for (qsizetype i = 0; i < items.size(); ++i)
        ASSERT_EQ(back.items[i], items[i]) << i;
}

TEST(timed_csv, as_others_leave_it) {
    QByteArray by_spreadsheet = "\xEF\xBB\xBF" + first_line + "\n\"1.5\",850,,1,2,here,\n2,,,,,,";
    by_spreadsheet.replace("\r\n", "\n");
    const read_run run = read_timed_csv(by_spreadsheet);
    EXPECT_EQ(run.problem, "");
    EXPECT_EQ(run.head, two_columns());
    const QList<run_item> items{timed_sweep{1500, {850.0, std::nullopt}, {1, 2}, {}},
                                timed_mark{1500, "here"},
                                timed_sweep{2000, {std::nullopt, std::nullopt}, {}, {}}};
    EXPECT_EQ(run.items, items);
}

TEST(timed_csv, hostile) {
    const auto with = [](const char* before, const QByteArray& after) {
        return QByteArray(first_line).replace(before, after);
    };
    const QByteArray many_columns = "About: Brivant Lite 1; columns " + QByteArray("0C A [b]|").repeated(600);
    struct row {
        QByteArray bytes;
        const char* problem;
    };
    const QByteArray good = first_line + "0.5,1,2,3,4,,\r\n";
    const QList<row> rows{
        {"", "The file is empty."},
        {"\n\r\n\n", "The file is empty."},
        {"Time,RPM\n1,2\n",
         "Line 1: its last column does not say what the run is; only files that this program "
         "exported as \"timed\" can be read."},
        {QByteArray("\xFF\xFE"
                    "T\0i\0",
                    6),
         "Line 1: it holds a byte 00, which no text has."},
        {with("Golf", "\xE4"), "Line 1: it is not text in UTF-8."},
        {with("Time", ""), "Line 1: column 1 must be \"Time\"."},
        {with("RPM,KPH", "KPH,RPM"), "Line 1: column 2 must be \"RPM\"."},
        {with(",Mark", ""), "Line 1: column 6 must be \"Mark\"."},
        {with(",Mark", ",Mark,More"), "Line 1: it has 8 columns instead of 7."},
        {with("metric", "cubic"), "Line 1: its last column says \"cubic units\", which is not understood."},
        {with("T14:", "T25:"),
         "Line 1: its last column says \"start 2013-05-01T25:04:07.123Z\", which is not understood."},
        {with("0C Engine", "0C] Engine"),
         "Line 1: its last column says \"columns 0C] Engine RPM [RPM]|0D Vehicle "
         "speed [kph]\", which is not understood."},
        {with("columns 0C Engine RPM [RPM]|0D Vehicle speed [kph]", "columns "),
         "Line 1: its last column names no PID."},
        {"\"" + many_columns + "\"\n", "Line 1: it has more than 512 columns of values."},
        {first_line + QByteArray(2000, ','), "Line 2: it has too many columns."},
        {first_line + QByteArray(300'000, '1'), "Line 2: it is longer than 262144 bytes."},
        {first_line + "0.5,1,2,3,4,", "Line 2: it has 6 cells instead of 7."},
        {first_line + "0.5,1,2,3,4,\"mark", "Line 2: the quote that begins cell 6 does not end."},
        {first_line + "0.5,\"1\"2,2,3,4,,\n", "Line 2: something follows the quote that ends cell 2."},
        {first_line + "0.5,1.5e,2,3,4,,\n", "Line 2: cell 2 holds \"1.5e\" instead of a number."},
        {first_line + "0.5,\"1,5\",2,3,4,,\n", "Line 2: cell 2 holds \"1,5\" instead of a number."},
        {first_line + "0.5,nan,2,3,4,,\n", "Line 2: cell 2 holds \"nan\" instead of a number."},
        {first_line + "0.5,1,2,1e999,4,,\n", "Line 2: cell 4 holds \"1e999\" instead of a number."},
        {first_line + ",1,2,3,4,,\n", "Line 2: it does not begin with its time in seconds."},
        {first_line + "1e300,1,2,3,4,,\n", "Line 2: it does not begin with its time in seconds."},
        {good + "\n0.499999,1,2,3,4,,\n", "Line 4: its time lies before that of the line before."},
        {good + "1,1,2,3,4,\xC0\x80,\n", "Line 3: its mark is not text in UTF-8."},
    };
    for (const row& one : rows) {
        const read_run run = read_timed_csv(one.bytes);
        EXPECT_EQ(run.problem, one.problem) << one.bytes.left(400).toStdString();
        EXPECT_EQ(run.items.size(), one.bytes.startsWith(good) ? 1 : 0); // what came before stands
    }
    run_head somewhere = two_columns();
    somewhere.has_positions = true;
    const QByteArray head = written(run_format::kind::timed_csv, somewhere, {});
    EXPECT_EQ(read_timed_csv(head + "1,,,90.5,0,,,,,,,,,\n").problem,
              "Line 2: its position is not on the earth.");
}

} // namespace brivant
