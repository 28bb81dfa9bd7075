#include "persistence/log_import.h"

#include "tests/persistence/export_bench.h"

namespace brivant {

// What an export tells of a run comes back by an import, and is exported the same again.
TEST(log_import, takes_back_what_was_exported) {
    export_bench t;
    ASSERT_TRUE(t.db.add_own_parts());
    const QStringList lines{"41E403E8,41E566,410D3C,411001F4,410C1AF8,410546,~,41145A80,41060A,~,4131ABCD",
                            "~,41E570,410D00,41100000,410C0000,~,~,41140080,410680,~,41310000",
                            "~,~,~,~,~,~,~,~,~,~,~",
                            "41E400C8,41E500,410DFF,4110FFFF,410CFFFF,4105FF,~,4114C8FF,4106FF,~,4131FFFF"};
    QString sql =
        "INSERT INTO BV_RUNS VALUES (1, 1367416987250); INSERT INTO BV_MARKS VALUES (1, 120.5, 'pass');";
    t.stored({{lines[0]}, {lines[1]}, {lines[2]}, {lines[3]}});
    sql += "UPDATE LOGGIES_DATA SET LINE_NUMBER=rowid;";
    for (int line = 0; line < 4; ++line)
        sql += QString("INSERT INTO BV_MOMENTS VALUES (1, %1, %2, '%3');")
                   .arg(line + 1)
                   .arg(line * 100.25)
                   .arg(line == 2 ? "" : "1,2,3,4,5.25,6,,8,9,,11");
    t.outside(sql.toUtf8());
    t.settings.format = run_format_of("timed");
    for (const bool by_standard : {false, true}) {
        for (const unit_system units : {unit_system::metric, unit_system::imperial}) {
            t.settings.units = units;
            t.settings.by_standard = by_standard;
            const QString first = t.exported(1);
            log_import importing(t.db, t.lists);
            const QString path = t.folder.filePath("its copy.csv");
            ASSERT_TRUE(QFile::remove(path) || !QFile::exists(path));
            ASSERT_TRUE(QFile::copy(t.path("2013-05-01_16_03_07_Log_timed.csv"), path));
            ASSERT_TRUE(importing.take(path, 1, [](int) { return true; }))
                << importing.problem().toStdString();
            EXPECT_EQ(importing.values_left_out(), 0);
            EXPECT_EQ(importing.sweeps(), 3);
            EXPECT_EQ(t.exported(importing.log_id()).toStdString(), first.toStdString());
        }
    }
    EXPECT_EQ(t.column("SELECT DISTINCT time_stamp FROM LOGGIES"), "2013-05-01 14:03:07");

    // What cannot be taken is counted; a file that ends in the middle, or is stopped, leaves nothing.
    const QByteArray text = bytes_of(t.folder.filePath("its copy.csv"));
    const auto imported = [&](const QByteArray& content, bool goes_on = true) {
        const QString changed = t.folder.filePath("changed.csv");
        put_file(changed, content);
        log_import importing(t.db, t.lists);
        const bool done = importing.take(changed, 1, [goes_on](int) { return goes_on; });
        return done ? QString::number(importing.values_left_out()) : importing.problem();
    };
    const QString logs = "SELECT COUNT(*) FROM LOGGIES, BV_RUNS, LOGGIES_DATA, BV_MOMENTS, BV_MARKS";
    EXPECT_EQ(imported(QByteArray(text).replace(",16383.75,", ",16383.8,")), "1");
    const QString before = t.column(logs);
    EXPECT_TRUE(imported(text + "1,2").contains(" cannot be imported. Line 7: "));
    EXPECT_EQ(imported(text + text.mid(text.lastIndexOf("\n", -2) + 1).repeated(600), false),
              "Stopped: nothing was imported.");
    const QByteArray early = QByteArray(text).replace("start 2013", "start 1913");
    EXPECT_EQ(imported(early), "The run began before 1970, or thousands of years from now.");
    for (const char* offset : {",-5.25,", ",2e11,"}) // a value before its sweep, and one years behind it
        EXPECT_TRUE(
            imported(QByteArray(text).replace(",5.25,", offset)).startsWith("A sweep of the run lies"));
    EXPECT_TRUE(imported("Time,RPM\n0,1\n").contains("only files that this program exported"));
    EXPECT_EQ(t.column(logs), before);
}

} // namespace brivant
