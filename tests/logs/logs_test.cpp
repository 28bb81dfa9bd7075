#include "base/console_log.h"
#include "base/string_table.h"
#include "logs/log_texts.h"
#include "logs/manage_logsDB.h"
#include "persistence/deletions.h"
#include "persistence/export_names.h"
#include "persistence/vehicles.h"
#include "tests/support/other_program.h"
#include "tests/support/print_qt.h"
#include "tests/support/recording_screen.h"
#include "tests/support/temporary_profile.h"
#include "tests/support/test_file.h"

#include <QFile>
#include <gtest/gtest.h>

namespace brivant {

namespace {

struct log_bench {
    temporary_profile profile;
    adapter_facts adapter;
    car_state car;
    recording_screen view;
    mac_toolies toolies{adapter, car, profile.defaults, profile.db};
    manage_logsDB manager{car, profile.db, profile.paths, view};

    log_bench() {
        silence_console_log();
        profile.db.init_DB();
        car.make_current(vehicle_or_first(profile.db, -1)->id, {});
    }
    // A log with its chunks; `days` ago.
    int store(const char* type, const QStringList& chunks = {}, int days = 0, int vehicle = 1,
              const QString& info = "sample points") {
        const int id = profile.db.add_2_LOG_DB(type, vehicle, info);
        for (int line = 0; line < chunks.size(); ++line)
            profile.db.append_2_LOG_DB(chunks.at(line), "", line, id);
        run(QString("UPDATE LOGGIES SET time_stamp = datetime('now', '-%1 days') WHERE LOG_ID=%2")
                .arg(days)
                .arg(id));
        return id;
    }
    void run(const QString& sql) { other_program(profile.db.path()).runs(sql.toUtf8()); }
    // The numbers of the listed logs, read in blocks of `block`.
    QString listed(int kind = 0, int recency = 0, int block = 2) {
        manager.choose_kind(kind);
        manager.choose_recency(recency);
        EXPECT_TRUE(manager.loadLogs());
        while (manager.load_more(block))
            ;
        QStringList numbers;
        for (qsizetype row = 0; row < manager.logs().size(); ++row)
            numbers += QString::number(manager.log_at(row).id);
        return numbers.join(' ');
    }
    log_header header(int id) { return *log_with_id(profile.db, id); }
};

} // namespace

TEST(log_list, filters_by_kind_and_names_the_recency) {
    log_bench bench;
    EXPECT_EQ(bench.listed(), "");
    EXPECT_EQ(bench.view.last("status"), "All logs (0 total)");
    const char* kinds[] = {"DTC", "Log", "O2", "O2 Test", "Misfire", "Mode6", "Veh_info", "Fuel", "Boost"};
    for (int i = 0; i < 9; ++i)
        bench.store(kinds[i], {}, 9 - i); // the newest last
    bench.store("DTC", {}, 500);
    bench.store("DTC", {}, 1, 2); // of another vehicle

    EXPECT_EQ(bench.listed(log_filter::all_kinds), "9 8 7 6 5 4 3 2 1 10");
    EXPECT_EQ(bench.view.last("status"), "All logs (9 total)"); // the number of the newest, not a count
    EXPECT_EQ(bench.manager.count_text(), "10 Logs");
    EXPECT_EQ(bench.listed(log_filter::dtc), "1 10");
    EXPECT_EQ(bench.listed(log_filter::log), "2");
    EXPECT_EQ(bench.listed(log_filter::o2), "4 3");
    EXPECT_EQ(bench.listed(log_filter::misfire), "5");
    EXPECT_EQ(bench.listed(log_filter::mode6), "6");

    EXPECT_EQ(bench.listed(log_filter::dtc, log_filter::last_month), "1 10") << "months only name the list";
    EXPECT_EQ(bench.view.last("status"), "Last month(2)  (9 total)");
    bench.store("Log", {}, 600);
    EXPECT_EQ(bench.listed(log_filter::all_kinds, log_filter::last_10_reads), "9 8 7 6 5 4 3 2 1 10");
    EXPECT_EQ(bench.view.last("status"), "Last 10 logs(10) (9 total)");
    EXPECT_EQ(bench.listed(log_filter::all_kinds, log_filter::last_year), "9 8 7 6 5 4 3 2 1 10 12");

    bench.car.make_current(77, {});
    EXPECT_EQ(bench.listed(), "");
    EXPECT_EQ(bench.manager.total_no_of_logs(), 0);
}

TEST(log_list, keeps_the_fields_apart_and_tells_a_damaged_database) {
    log_bench bench;
    const int id = bench.store("DTC", {}, 0, 1, "a|b||c");
    bench.run("INSERT INTO LOGGIES (LOG_ID, VEH_ID, LOG_TYPE, time_stamp) VALUES (9, 1, NULL, '2099-01-01')");
    EXPECT_EQ(bench.listed(), QString("9 %1").arg(id));
    EXPECT_EQ(bench.manager.log_at(1).info, "a|b||c");

    bench.run("UPDATE LOGGIES SET INFO = replace(hex(zeroblob(1000000)), '00', char(0x20AC)) WHERE LOG_ID=9");
    EXPECT_EQ(bench.listed().section(u' ', 0, 0), "9");
    EXPECT_EQ(bench.manager.log_at(0).info, QString(1000, QChar(0x20AC)) + "...") << "lists are for reading";
    EXPECT_EQ(bench.manager.log_at(1).time_stamp, bench.header(id).time_stamp);
    EXPECT_EQ(bench.manager.log_at(0).type, "");

    QFile file(bench.profile.db.path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write("not a database any more");
    file.close();
    EXPECT_FALSE(bench.manager.loadLogs());
    EXPECT_TRUE(bench.view.last("message").contains(bench.profile.db.path()));
    EXPECT_TRUE(bench.manager.logs().isEmpty());
}

TEST(log_text, is_shown_without_its_mark_and_never_as_html) {
    log_bench bench;
    const int empty = bench.store("Log");
    EXPECT_EQ(viewLog(bench.toolies, bench.header(empty)), "<font size=-2>");
    const int report = bench.store("DTC", {"one\n<b>two</b> & <font color=#66ff33>[OK]</font>"});
    EXPECT_EQ(viewLog(bench.toolies, bench.header(report)),
              "<font size=-2>one<br>&lt;b&gt;two&lt;/b&gt; &amp; <font color=#66ff33>[OK]</font><br>");
    EXPECT_EQ(preview_of(bench.toolies, bench.header(report)), "one\n<b>two</b> & [OK]\n");
    const int hostile = bench.store("DTC", {"<img src=x><font face=evil><font color=url(x)>"});
    EXPECT_EQ(viewLog(bench.toolies, bench.header(hostile)).count('<'),
              2); // its own tag and the last line end
    EXPECT_TRUE(report_html(bench.profile.db, bench.header(report))
                    .startsWith("<font size=-3>sample points\none<BR>"));

    const int large = bench.store("DTC", {QString(400 * 1024, 'a'), QString(400 * 1024, 'b'), "c"});
    const QString shown = stored_text(bench.profile.db, large);
    EXPECT_LT(shown.size(), 513 * 1024);
    EXPECT_TRUE(shown.contains("longer than can be shown"));
}

TEST(log_text, preview_of_a_run_has_names_units_and_the_first_samples) {
    log_bench bench;
    QStringList lines;
    for (int i = 0; i < 100; ++i)
        lines += QString("410D%1,~,410C1AF8").arg(i, 2, 16, QChar('0'));
    const QString shown = preview_of(bench.toolies, bench.header(bench.store("Log", lines)));
    const QStringList rows = shown.split('\n');
    EXPECT_TRUE(rows.at(0).contains(bench.toolies.get_pid_name("0D", false)) && rows.at(0).contains("RPM"))
        << shown.toStdString();
    EXPECT_TRUE(rows.at(1).endsWith("1726.00")) << shown.toStdString();
    EXPECT_EQ(rows.at(1).size(), rows.at(2).size());
    EXPECT_LT(rows.size(), 20);
    EXPECT_TRUE(shown.endsWith("...\n"));

    for (const char* rubbish : {"", ",,,", "41", "410", "zz,41zz00", "~"})
        preview_of(bench.toolies, bench.header(bench.store("Boost", {rubbish})));
    const QString wide = preview_of(bench.toolies, bench.header(bench.store("Log", {QString(100000, ',')})));
    EXPECT_LT(wide.size(), 2000);
}

TEST(log_text, preview_of_a_run_follows_the_reading) {
    log_bench bench;
    bench.profile.defaults.set(setting::metric_units, true);
    const log_header run = bench.header(bench.store("Log", {"~,410D3C", "41422E7C,410D3C"}));
    const QString own = preview_of(bench.toolies, run);
    EXPECT_TRUE(own.contains("Control module voltage ( V)")) << own.toStdString();
    EXPECT_TRUE(
        own.endsWith("   0.00                 60.00\nSAE J1979 says otherwise of: Control module voltage\n"))
        << own.toStdString();
    bench.profile.defaults.set(setting::standard_reading, true);
    const QString standard = preview_of(bench.toolies, run);
    EXPECT_TRUE(standard.contains("Control module voltage (V by SAE J1979)")) << standard.toStdString();
    EXPECT_TRUE(standard.contains(" 11.90 ")) << standard.toStdString();
    EXPECT_TRUE(standard.endsWith("own reading says otherwise of: Control module voltage\n"));
}

TEST(selected_logs, are_deleted_after_a_yes_and_one_by_one) {
    log_bench bench;
    const QList<int> ids{bench.store("Log", {"410D00"}), bench.store("DTC", {"text"}),
                         bench.store("DTC", {"kept"})};
    int agreed = 0;
    bench.manager.deleteItems({}, [&] { ++agreed; });
    EXPECT_EQ(bench.view.last("message"), localised("DLG_ITEMS_MUST_B_SELECTED"));
    bench.manager.deleteItems({bench.header(ids[0])}, [&] { ++agreed; });
    EXPECT_TRUE(bench.view.last("question").startsWith(localised("DLG_ARE_U_SURE_DELETE_ITEMS")));
    EXPECT_TRUE(bench.view.last("question").endsWith(localised("LBL_CANNOT_B_UNDONE")));
    bench.view.answer(false);
    EXPECT_EQ(agreed, 0);
    bench.manager.deleteItems({bench.header(ids[0])}, [&] { ++agreed; });
    bench.view.answer(true);
    EXPECT_EQ(agreed, 1);

    log_deletion deletion(bench.profile.db, {ids[0], ids[1]});
    while (deletion.step()) {
    }
    EXPECT_EQ(deletion.deleted(), 2);
    EXPECT_EQ(bench.listed(), QString::number(ids[2]));
    EXPECT_EQ(bench.profile.db.retrieve_from_DB("SELECT * FROM LOGGIES_DATA").size(), 1);

    ASSERT_TRUE(QFile::setPermissions(bench.profile.db.path(), QFile::ReadOwner));
    log_deletion refused(bench.profile.db, {ids[2]});
    EXPECT_FALSE(refused.step());
    EXPECT_TRUE(refused.has_failed() || refused.deleted() == 1); // a super-user may write all the same
}

TEST(selected_logs, are_copied_as_the_files_that_exist) {
    log_bench bench;
    const log_header exported = bench.header(bench.store("Log"));
    const log_header kept = bench.header(bench.store("Fuel"));
    const log_header never = bench.header(bench.store("DTC"));
    EXPECT_EQ(bench.manager.output_folder(), "");
    const QString documents = bench.profile.paths.documents + "/loggies";
    const QString application = bench.profile.paths.application_folder + "/loggies";
    ASSERT_TRUE(QDir().mkpath(documents) && QDir().mkpath(application));
    EXPECT_EQ(bench.manager.output_folder(), documents);

    const QString of_export = documents + "/" + export_file_name(exported, false);
    const QString of_kept = application + "/" + export_file_name(kept, true);
    put_file(of_export);
    put_file(of_kept);
    int missing = 0;
    EXPECT_EQ(bench.manager.copied_files({exported, kept, never}, missing),
              QStringList({of_export, of_kept}));
    EXPECT_EQ(missing, 1);
}

} // namespace brivant
