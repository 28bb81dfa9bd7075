#include "tests/persistence/export_bench.h"

namespace brivant {

TEST(log_export, byte_for_byte) {
    export_bench t;
    const int id = t.stored({{"410D3C,411180,410C1AF8,41057B", "2013-03-31 00:59:59"},
                             {"410D3D,411180,410C1AF8,41057B", "2013-03-31 01:00:00"}, // summer time begins
                             {"410D3C,~,410C1AF8,-1", "2013-10-27 00:59:59"},
                             {"410D3C,,411180,", "2013-10-27 01:00:00"}}); // and ends; another order
    const QString path = t.path();

    t.settings.units = unit_system::metric;
    EXPECT_EQ(t.exported(id), "Vehicle speed (kph),Throttle position (%),Engine RPM (RPM),"
                              "Engine coolant temperature (\u00B0 C)\n"
                              "60.000000,50.200000,1726.000000,83.000000\n"
                              "61.000000,50.200000,1726.000000,83.000000\n"
                              "60.000000,nan,1726.000000,nan\n"
                              "60.000000,50.200000,nan,nan\n");
    EXPECT_EQ(t.exports(), QStringList("2013-05-01_16_03_07_Log.csv"));

    t.settings.units = unit_system::imperial;
    t.settings.time_column = true;
    EXPECT_EQ(t.exported(id, true), "Vehicle speed (mph),Throttle position (%),Engine RPM (RPM),"
                                    "Engine coolant temperature (\u00B0 F),(Sample time)\n"
                                    "37.500000,50.200000,1726.000000,181.400000,2013-03-31 01:59:59\n"
                                    "38.120000,50.200000,1726.000000,181.400000,2013-03-31 03:00:00\n"
                                    "37.500000,nan,1726.000000,nan,2013-10-27 02:59:59\n"
                                    "37.500000,50.200000,nan,nan,2013-10-27 02:00:00\n");
    EXPECT_EQ(t.exports().last(), "2013-05-01_16_03_07_Log.txt");
}

TEST(log_export, columns) {
    export_bench t;
    const auto first_lines = [&t](const QList<export_bench::line>& lines) {
        return t.exported(t.stored(lines)).split('\n').mid(0, 2);
    };
    // A name comes from the first line that has one for the column; without any there is none.
    EXPECT_EQ(first_lines({{"~,-1,~"}, {"~,410C1AF8,NODATA"}, {"410D3C,410D3C,"}}),
              (QStringList{"Vehicle speed (mph),Engine RPM (RPM),N/A (N/A)", "nan,nan,nan"}));
    // A cut first line hides no column.
    EXPECT_EQ(first_lines({{""}, {"410D3C,410C1AF8"}})[0], "Vehicle speed (mph),Engine RPM (RPM)");
    // Computed PIDs, names and units of their own
    t.settings.units = unit_system::metric;
    EXPECT_EQ(first_lines({{"41E566,41E403E8"}})[1], "1.000000,10.000000");

    const QStringList forty(40, "410C1AF8"); // more than the 300 bytes that items are counted in
    const QStringList wide = first_lines({{forty.join(',')}});
    EXPECT_EQ(wide[0], QStringList(40, "Engine RPM (RPM)").join(','));
    EXPECT_EQ(wide[1], QStringList(40, "1726.000000").join(','));

    EXPECT_EQ(t.exported(t.stored({})), "");
}

TEST(log_export, in_the_reading_of_the_standard) {
    export_bench t;
    struct column {
        const char* reply;
        const char* own[2]; // metric: heading, value
        const char* standard[2];
    };
    // A unit of the program's own that its number is not in, a state, a reply cut short, a computed value
    const column columns[] = {
        {"410D3C", {"Vehicle speed (kph)", "60.000000"}, {"Vehicle speed (km/h by SAE J1979)", "60.000000"}},
        {"41422E7C",
         {"Control module voltage ( V)", "0.002000"},
         {"Control module voltage (V by SAE J1979)", "11.900000"}},
        {"4103", {"Fuel system status (N/A)", "nan"}, {"Fuel system status (N/A by SAE J1979)", "nan"}},
        {"410C1A", {"Engine RPM (RPM)", "0.000000"}, {"Engine RPM (rpm by SAE J1979)", "nan"}},
        {"41E565", {"Boost (KPa)", "0.000000"}, {"Boost (kPa over outside pressure)", "0.000000"}},
    };
    QStringList replies;
    QString own, standard;
    for (const int row : {0, 1})
        for (const column& c : columns) {
            const bool is_last = &c == std::end(columns) - 1;
            own += c.own[row] + QString(is_last ? "\n" : ",");
            standard += c.standard[row] + QString(is_last ? "\n" : ",");
            if (row == 0)
                replies += c.reply;
        }
    const int id = t.stored({{replies.join(',')}});
    t.settings.units = unit_system::metric;
    EXPECT_EQ(t.exported(id).toStdString(), own.toStdString());
    t.settings.by_standard = true;
    EXPECT_EQ(t.exported(id).toStdString(), standard.toStdString());
}

// By the standard some numbers need the other items of their line.
TEST(log_export, works_lines_out_by_physics) {
    const struct {
        const char* line;
        const char* metric; // of its first item
        const char* imperial;
    } rows[] = {
        {"41E40181,410D3C,411003E8", "18.252500", "42.932542"},        // petrol, where the car tells no fuel
        {"41E40181,410D3C,411003E8,415104", "20.106667", "47.293812"}, // diesel
        {"41E40181,410D3C,411003E8,415103", "nan", "nan"},             // its figures are not known here
        {"41E40181,410D3C,415E0064", "12.000000", "28.225750"},        // the fuel rate itself
        {"41E40181,410D3C,411003E8,415E0000", "nan", "nan"},           // none is burnt
        {"41E40181,~,411003E8", "nan", "nan"},
        {"~,410D3C,411003E8", "nan", "nan"},
        {"41E58C,410A64", "39.000000", "5.656472"},
        {"41E58C,413362", "42.000000", "6.091585"}, // over the pressure that the car measures
        {"410B8C,414F00000019", "137.254902", "40.531345"},
        {"41100100,41506400", "3.906310", "0.516716"},
    };
    export_bench t;
    t.settings.by_standard = true;
    for (const auto& row : rows) {
        const int id = t.stored({{row.line}});
        for (const unit_system units : {unit_system::metric, unit_system::imperial}) {
            t.settings.units = units;
            EXPECT_EQ(t.exported(id).section('\n', 1, 1).section(',', 0, 0),
                      units == unit_system::metric ? row.metric : row.imperial)
                << row.line;
        }
    }
}

TEST(sampled_value, tells_where_the_readings_differ) {
    const text_resources lists;
    const struct {
        const char* reply;
        bool metric;
        bool imperial;
    } rows[] = {
        {"410D3C", false, false}, {"410C1AF8", false, false}, {"41142080", false, false},
        {"41057B", false, false}, {"41101234", false, false}, {"410B40", false, false},
        {"41422E7C", true, true}, {"41310599", true, true},   {"411F0E8D", true, true}, // whole hours alone
        {"414506", false, false}, {"410B06", false, false},   {"414206A4", true, true}, // 2.4 % is 2.353 %
        {"413364", false, true}, // "in.Hg" beside a number in psi
        {"410C1A", true, true},   {"411C06", false, false},   {"41E565", false, false},
        {"~", false, false},      {"NODATA", false, false},   {"", false, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(readings_differ(row.reply, {unit_system::metric}, lists), row.metric) << row.reply;
        EXPECT_EQ(readings_differ(row.reply, {unit_system::imperial, true}, lists), row.imperial)
            << row.reply;
    }
    EXPECT_EQ(sampled_unit("6D", {unit_system::metric, true}), "kPa");
    EXPECT_TRUE(std::isnan(sampled_number("416D04000000002800000000", {unit_system::metric, true}, lists)))
        << "no temperature in the place of a pressure";
}

TEST(log_export, lines_of_its_own_log_in_order_of_insertion_however_sliced) {
    export_bench t;
    QList<export_bench::line> lines;
    QString expected = "Vehicle speed (kph)\n";
    for (int speed = 0; speed < 250; ++speed) {
        lines += {"410D" + QString("%1").arg(speed, 2, 16, QChar('0')).toUpper(), "2013-05-01 14:00:00"};
        expected += QString("%1.000000\n").arg(speed);
    }
    t.stored({{"410C1AF8"}});
    const int id = t.stored(lines);
    t.stored({{"41057B"}});
    t.settings.units = unit_system::metric;
    for (const int slice : {1, 7, 249, 250, 251, 1000})
        EXPECT_EQ(t.exported(id, false, slice), expected) << slice;

    log_export exporting(t.db, t.lists, t.settings);
    ASSERT_TRUE(exporting.begin(id, false));
    while (exporting.step(100))
        EXPECT_LE(exporting.lines_written(), exporting.lines_announced());
    EXPECT_EQ(exporting.lines_written(), 250);
    EXPECT_EQ(exporting.lines_announced(), 250);
}

TEST(log_export, the_same_name_again) {
    export_bench t;
    ASSERT_TRUE(t.db.add_own_parts());
    const int longer = t.stored({{"410D3C"}, {"410D3C"}});
    const int shorter = t.stored({{"410C1AF8"}}); // stored in the same second
    ASSERT_TRUE(QDir(t.folder.path()).mkpath("app/loggies"));
    const QString session = t.folder.filePath("app/loggies/2013-05-01_16_03_07_Log.csv");
    put_file(session);
    t.exported(longer);
    EXPECT_TRUE(QFile::exists(session));
    EXPECT_EQ(t.exported(shorter), "Engine RPM (RPM)\n1726.000000\n");
    const QStringList both{"2013-05-01_16_03_07_Log (2).csv", "2013-05-01_16_03_07_Log.csv"};
    EXPECT_EQ(t.exports(), both);
    EXPECT_TRUE(QFile::exists(session));
    EXPECT_EQ(t.exported(longer), QString::fromUtf8(bytes_of(t.path(both.last()))));
    EXPECT_FALSE(QFile::exists(session)); // the file of that name goes from the other folder
    EXPECT_EQ(t.exports(), both);
    const int of_another_kind = t.stored({{"410D3C"}}, "Boost");
    EXPECT_FALSE(t.exported(of_another_kind).isEmpty());
    EXPECT_TRUE(QFile::exists(t.path("2013-05-01_16_03_07_Boost.csv")));
    // The clock is put back in autumn: one local time for two logs.
    const int twice = t.stored({{"410D3C"}});
    t.outside(QString("UPDATE LOGGIES SET time_stamp='2013-10-27 00:30:00' WHERE LOG_ID=%1;"
                      "UPDATE LOGGIES SET time_stamp='2013-10-27 01:30:00' WHERE LOG_ID=%2")
                  .arg(longer)
                  .arg(twice)
                  .toUtf8());
    EXPECT_TRUE(t.exported(longer) != "" && t.exported(twice) != "");
    EXPECT_TRUE(QFile::exists(t.path("2013-10-27_02_30_00_Log (2).csv")));

    // What is left of a deleted log is not the next one's to replace, nor does a number change.
    t.outside(QString("UPDATE LOGGIES SET time_stamp='2014-01-01 00:00:00' WHERE LOG_ID IN (%1, %2, %3)")
                  .arg(longer)
                  .arg(shorter)
                  .arg(of_another_kind)
                  .toUtf8());
    t.outside("UPDATE LOGGIES SET LOG_TYPE='Ann''s'");
    const QString left = t.path("2014-01-01_01_00_00_Ann's.csv");
    const QString its_text = t.exported(longer);
    EXPECT_TRUE(t.exported(of_another_kind) != "");
    ASSERT_TRUE(t.db.delete_a_DB_log(longer));
    for (const int id : {of_another_kind, shorter})
        EXPECT_NE(t.exported(id), "");
    EXPECT_EQ(bytes_of(left), its_text.toUtf8());
    EXPECT_EQ(
        t.exports().filter("2014").join(' '),
        "2014-01-01_01_00_00_Ann's (2).csv 2014-01-01_01_00_00_Ann's (3).csv 2014-01-01_01_00_00_Ann's.csv");

    // No name leads out of the folder.
    t.exported(t.stored({{"410D3C"}}, "../../Log"));
    EXPECT_EQ(t.exports().first(), "2013-05-01_16_03_07_.._.._Log.csv");
}

TEST(log_export, a_log_or_a_folder_that_is_not_there) {
    export_bench t;
    const int id = t.stored({{"410D3C"}});
    EXPECT_EQ(t.exported(77), "There is no log with the number 77.");
    EXPECT_FALSE(QDir(t.folder.filePath("loggies")).exists());

    const QString in_the_way = t.folder.filePath("loggies");
    put_file(in_the_way);
    EXPECT_TRUE(
        t.exported(id).contains("loggies/2013-05-01_16_03_07_Log.csv cannot be written (Not a directory)"));
    EXPECT_TRUE(t.log().contains("Fallo export_fromDB_2_CSV::"));
    ASSERT_TRUE(QFile::remove(in_the_way));

    // A folder stands where the file would be.
    ASSERT_TRUE(QDir(t.folder.path()).mkpath("loggies/2013-05-01_16_03_07_Log.csv/inside"));
    EXPECT_TRUE(t.exported(id).contains("Log.csv cannot be written (a folder has this name)"));

    // The table goes away meanwhile.
    ASSERT_TRUE(QDir(t.folder.filePath("loggies")).removeRecursively());
    log_export exporting(t.db, t.lists, t.settings);
    ASSERT_TRUE(exporting.begin(id, false));
    t.outside("DROP TABLE LOGGIES_DATA");
    EXPECT_FALSE(exporting.step(10));
    EXPECT_EQ(exporting.problem(), "The log cannot be read: no such table: LOGGIES_DATA.");
    EXPECT_FALSE(QFile::exists(t.path()));

    t.outside("CREATE TABLE LOGGIES_DATA (DATA2 TEXT)");
    EXPECT_TRUE(t.exported(id).startsWith("The log cannot be read: no such column: LOG_ID"));
    t.write("no database");
    EXPECT_TRUE(t.exported(id).contains("is no database"));
}

TEST(log_export, stopped_in_the_middle_leaves_nothing) {
    export_bench t;
    const int id = t.stored(QList<export_bench::line>(20, {"410D3C"}));
    {
        log_export exporting(t.db, t.lists, t.settings);
        ASSERT_TRUE(exporting.begin(id, false));
        ASSERT_TRUE(exporting.step(5));
        ASSERT_TRUE(exporting.step(5));
        EXPECT_FALSE(QFile::exists(t.path()));
        log_export beside(t.db, t.lists, t.settings); // another program's, say, of the same log
        ASSERT_TRUE(beside.begin(id, false) && beside.step(5));
        EXPECT_EQ(t.exports().size(), 2);
        exporting.stop();
        while (beside.step(5)) {
        }
        EXPECT_EQ(bytes_of(t.path()).count('\n'), 21);
        EXPECT_TRUE(QFile::remove(t.path()));
        EXPECT_EQ(t.exports(), QStringList());
        EXPECT_FALSE(exporting.step(5) || exporting.succeeded());
        EXPECT_EQ(t.exports(), QStringList());

        ASSERT_TRUE(exporting.begin(id, false));
        ASSERT_TRUE(exporting.step(5)); // and goes away unfinished
    }
    EXPECT_EQ(t.exports(), QStringList());

    // What was exported before survives a stop.
    const QString whole = t.exported(id);
    log_export again(t.db, t.lists, t.settings);
    ASSERT_TRUE(again.begin(id, false));
    ASSERT_TRUE(again.step(5));
    again.stop();
    EXPECT_EQ(bytes_of(t.path()), whole.toUtf8());
}

} // namespace brivant
