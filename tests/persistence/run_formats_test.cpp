#include "tests/persistence/export_bench.h"

namespace brivant {

TEST(run_formats, of_a_stored_run) {
    export_bench t;
    ASSERT_TRUE(t.db.add_own_parts());
    // Of an older program: the seconds of its lines. The coolant tells its name in the second line alone.
    const int old = t.stored({{"410D3C,~", "2013-05-01 14:03:08"}, {"410D3D,410546", "2013-05-01 14:03:10"}});
    // With moments: the items of its second line stand the other way round, and then comes a gap.
    const int timed = t.stored({{"410D3C,410546"}, {"410546,410D3D"}, {"~,~"}}, "Fuel");
    t.outside("UPDATE LOGGIES_DATA SET LINE_NUMBER=rowid WHERE LOG_ID=2; INSERT INTO BV_RUNS VALUES (2, "
              "1367416987250); INSERT INTO BV_MOMENTS VALUES (2, 3, 0, '15,40.25'), (2, 4, 100.5, '12,38'), "
              "(2, 5, 200, '')");
    const auto values = [](const QString& text) { return text.section('\n', 1).remove('\r'); };
    t.settings.units = unit_system::metric;
    t.settings.format = run_format_of("timed");
    EXPECT_EQ(values(t.exported(old)), "1.000000,60,,,\n3.000000,61,30,,\n");
    const QString text = t.exported(timed);
    EXPECT_EQ(values(text).toStdString(),
              "0.000000,60,30,15,40.25,,\n0.100500,61,30,38,12,,\n0.200000,,,,,,\n");
    EXPECT_TRUE(text.contains("start 2013-05-01T14:03:07.250Z; vehicle Cur Veh.;")) << text.toStdString();
    EXPECT_EQ(t.exports(),
              (QStringList{"2013-05-01_16_03_07_Fuel_timed.csv", "2013-05-01_16_03_07_Log_timed.csv"}));
    // Marks stand at their time, between and behind the sweeps.
    t.outside("INSERT INTO BV_MARKS VALUES (2, 300.5, 'end'), (2, 50, 'pass, left'), (1, 5, 'of the other')");
    EXPECT_EQ(values(t.exported(timed)).toStdString(), "0.000000,60,30,15,40.25,,\n"
                                                       "0.050000,,,,,\"pass, left\",\n"
                                                       "0.100500,61,30,38,12,,\n"
                                                       "0.200000,,,,,,\n"
                                                       "0.300500,,,,,end,\n");
    t.settings.format = run_format_of("mdf4"); // written at earlier places, too
    EXPECT_TRUE(t.exported(timed).startsWith("MDF     4.10"));
    t.settings.format = run_format_of("gpx");
    EXPECT_EQ(t.exported(timed), "The run has no positions: there is no track to write.");
}

} // namespace brivant
