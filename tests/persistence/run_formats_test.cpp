#include "base/anonymity.h"
#include "persistence/log_import.h"
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
    // A damaged line has more cells than the columns that were told.
    const int damaged = t.stored({{"410D3C"}, {"410D3D,~,~,~"}});
    t.outside("UPDATE LOGGIES_DATA SET LINE_NUMBER=rowid WHERE LOG_ID=3; INSERT INTO BV_RUNS VALUES (3, "
              "1367416987250); INSERT INTO BV_MOMENTS VALUES (3, 6, 0, '15'), (3, 7, 100, '12,38,39,40')");
    EXPECT_EQ(values(t.exported(damaged)), "0.000000,60,15,,\n0.100000,61,12,,\n");
    t.settings.format = run_format_of("mdf4"); // written at earlier places, too
    EXPECT_TRUE(t.exported(timed).startsWith("MDF     4.10"));
    t.settings.format = run_format_of("gpx");
    EXPECT_EQ(t.exported(timed), "The run has no positions: there is no track to write.");
}

TEST(run_formats, of_a_run_with_positions) {
    export_bench t;
    ASSERT_TRUE(t.db.add_own_parts());
    const int id = t.stored({{"410D3C"}, {"410D3D"}, {"410D3E"}, {"410D3F"}, {"410D40"}});
    t.outside(
        "UPDATE LOGGIES_DATA SET LINE_NUMBER=rowid; INSERT INTO BV_RUNS VALUES (1, 1367416987000); "
        "INSERT INTO BV_MOMENTS SELECT 1, LINE_NUMBER, LINE_NUMBER * 500 - 500, '10' FROM LOGGIES_DATA; "
        "INSERT INTO BV_POSITIONS VALUES (1, 1, -250, 52.5, 13.25, 34.5, 16.6, 22.1, 4.9), "
        "(1, 2, -750, 52.5, 13.25, 34.5, 16.6, 22.1, 4.9), (1, 3, -250, 52.6, 13.25, NULL, NULL, NULL, "
        "NULL), (1, 4, 0, 91, 13.25, 0, 0, 0, 0)");
    t.settings.units = unit_system::metric;
    t.settings.format = run_format_of("timed");
    const QString text = t.exported(id).remove('\r');
    EXPECT_TRUE(
        text.startsWith("Time,KPH,Latitude,Longitude,Altitude,\"GPS speed (m/s)\",\"GPS heading (deg)\","
                        "\"GPS error (m)\",\"GPS offset (ms)\",\"Vehicle speed offset (ms)\",Mark,"))
        << text.toStdString();
    EXPECT_EQ(text.section('\n', 1).toStdString(), "0.000000,60,52.5,13.25,34.5,16.6,22.1,4.9,-250,10,,\n"
                                                   "0.500000,61,52.5,13.25,34.5,16.6,22.1,4.9,-750,10,,\n"
                                                   "1.000000,62,52.6,13.25,,,,,-250,10,,\n"
                                                   "1.500000,63,,,,,,,,10,,\n"
                                                   "2.000000,64,,,,,,,,10,,\n");
    log_import importing(t.db, t.lists);
    ASSERT_TRUE(importing.take(t.path("2013-05-01_16_03_07_Log_timed.csv"), 1, [](int) { return true; }))
        << importing.problem().toStdString();
    EXPECT_EQ(t.exported(importing.log_id()).remove('\r').toStdString(), text.toStdString());
    EXPECT_EQ(t.column("SELECT DATA2 FROM LOGGIES_DATA WHERE LOG_ID=2"),
              "52.5000000,13.2500000,34.5,16.60 52.5000000,13.2500000,34.5,16.60 52.6000000,13.2500000,,  ");
    EXPECT_EQ(t.column("SELECT INFO FROM LOGGIES WHERE LOG_ID=2"), "5 Sample points   +GPS imported");

    // What two sweeps share is one point of the track.
    t.settings.format = run_format_of("gpx");
    const QString track = t.exported(id);
    EXPECT_EQ(track.count("<trkpt "), 2) << track.toStdString();
    EXPECT_TRUE(track.contains("<time>2013-05-01T14:03:06.750Z</time><extensions><gpxtpx:TrackPointExtension>"
                               "<gpxtpx:speed>16.6</gpxtpx:speed><gpxtpx:course>22.1</gpxtpx:course>"))
        << track.toStdString();

    set_anonymous(true);
    EXPECT_EQ(t.exported(id), "With anonymity on no position is given away: no track is written.");
    t.settings.format = run_format_of("timed");
    EXPECT_FALSE(t.exported(id).contains("52.5"));
    set_anonymous(false);
}

} // namespace brivant
