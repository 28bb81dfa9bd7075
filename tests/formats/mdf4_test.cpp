#include "tests/formats/mdf4_reader.h"
#include "tests/formats/run_bench.h"

namespace brivant {

namespace {

timed_sweep sweep_at(double ms, double rpm) {
    return {ms, {rpm, rpm / 100, std::nullopt}, {1.5, 35.25, 70}, {}};
}

} // namespace

TEST(mdf4, what_it_says) {
    run_head head = drive_head();
    head.vehicle = "<Golf> & \u00FCber\x01";
    head.by_standard = true;
    head.has_positions = true;
    timed_sweep somewhere = sweep_at(0, 800);
    somewhere.position = geo_position{52.5, -13.25, std::nullopt, 4};
    const mdf4_file file =
        read_mdf4(written(run_format::kind::mdf4, head,
                          {somewhere, timed_mark{120.25, " the\nramp "}, sweep_at(140.5, 900),
                           timed_mark{130, "earlier"}, timed_sweep{300, {}, {}, {}}}));
    ASSERT_EQ(file.fault, "");
    EXPECT_TRUE(file.is_finished);
    EXPECT_EQ(file.start_ns, 1'367'417'047'123'000'000u);
    EXPECT_EQ(file.comment,
              "<HDcomment xmlns=\"http://www.asam.net/mdf/v4\"><TX>Brivant Lite 0.1.0; start "
              "2013-05-01T14:04:07.123Z; vehicle &lt;Golf&gt; &amp; \u00FCber; values by SAE J1979; metric "
              "units</TX></HDcomment>");
    EXPECT_TRUE(file.history.contains("<tool_id>Brivant Lite</tool_id>"));

    QStringList channels;
    for (const auto& one : file.channels)
        channels += QString("%1 [%2] %3 %4").arg(one.name, one.unit).arg(one.type).arg(one.sync);
    EXPECT_EQ(channels, (QStringList{"Time [s] 2 1", "Engine RPM [RPM] 0 0", "Vehicle speed [kph] 0 0",
                                     "Engine coolant temperature [\u00B0 C] 0 0", "Latitude [deg] 0 0",
                                     "Longitude [deg] 0 0", "Altitude [m] 0 0", "GPS speed [m/s] 0 0",
                                     "GPS heading [deg] 0 0", "GPS error [m] 0 0", "GPS offset [ms] 0 0",
                                     "Engine RPM offset [ms] 0 0", "Vehicle speed offset [ms] 0 0",
                                     "Engine coolant temperature offset [ms] 0 0"}));
    EXPECT_TRUE(file.channels[1].comment.contains("PID 0C"));

    const std::optional<double> none;
    const QList<QList<std::optional<double>>> records{
        {0.0, 800.0, 8.0, none, 52.5, -13.25, none, 4.0, none, none, 0.0, 1.5, 35.25, 70.0},
        {0.1405, 900.0, 9.0, none, none, none, none, none, none, none, none, 1.5, 35.25, 70.0},
        {0.3, none, none, none, none, none, none, none, none, none, none, none, none, none}};
    EXPECT_EQ(file.records, records);
    EXPECT_EQ(file.data_blocks, 3); // an event ends one

    ASSERT_EQ(file.events.size(), 2);
    EXPECT_EQ(file.events[0].name, "the ramp");
    EXPECT_DOUBLE_EQ(file.events[0].seconds, 0.12025);
    EXPECT_EQ(file.events[1].name, "earlier"); // it is told late: behind a sweep of a later time
    for (const auto& event : file.events)
        EXPECT_EQ((QList<int>{event.type, event.sync, event.range, event.cause}), (QList<int>{6, 1, 0, 4}));
}

// A program that is killed leaves what it has written: whole to the last record, wherever it is cut.
TEST(mdf4, cut_off) {
    QBuffer out;
    out.open(QIODevice::ReadWrite);
    const auto writer = make_run_writer(run_format::kind::mdf4, out);
    ASSERT_TRUE(writer->begin(drive_head()));
    for (int sweeps = 0; sweeps < 4000; ++sweeps) {
        if (sweeps % 97 == 0 || sweeps < 4) {
            const mdf4_file file = read_mdf4(out.data());
            ASSERT_EQ(file.fault, "") << sweeps;
            EXPECT_FALSE(file.is_finished);
            ASSERT_EQ(file.records.size(), sweeps);
            EXPECT_EQ(sweeps > 0 ? file.records.last()[1] : -1, sweeps - 1.0);
        }
        for (int cut = 1; sweeps == 10 && cut < 9; ++cut)
            EXPECT_EQ(read_mdf4(out.data().chopped(cut)).records.size(), 9);
        ASSERT_TRUE(sweeps != 50 || writer->mark({4990, "half way"}));
        ASSERT_TRUE(writer->add(sweep_at(sweeps * 100.0, sweeps)));
    }
    ASSERT_TRUE(writer->end());
    const mdf4_file file = read_mdf4(out.data());
    EXPECT_EQ(file.fault, "");
    EXPECT_TRUE(file.is_finished);
    EXPECT_EQ(file.announced_records, 4000u);
    EXPECT_EQ(file.records.size(), 4000);
    EXPECT_GT(file.data_blocks, 3);
    EXPECT_EQ(file.events.size(), 1);
}

TEST(mdf4, a_run_without_sweeps) {
    const mdf4_file file = read_mdf4(written(run_format::kind::mdf4, drive_head(), {timed_mark{0, ""}}));
    EXPECT_EQ(file.fault, "");
    EXPECT_TRUE(file.is_finished);
    EXPECT_EQ(file.records.size(), 0);
    EXPECT_EQ(file.events.value(0).name, "Mark");
}

} // namespace brivant
