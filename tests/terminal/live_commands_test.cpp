#include "tests/support/folder_in_memory.h"
#include "tests/support/gpsd_stand_in.h"
#include "tests/support/other_program.h"
#include "tests/terminal/cli_process.h"
#include "tools/virtual_adapter/kinds.h"

#include <QRegularExpression>
#include <QTemporaryFile>
#include <csignal>
#include <random>
#include <sqlite3.h>

namespace brivant {

namespace {

// The database of the profile, as another program sees it: each row's columns joined by blanks.
QStringList rows_of(const QString& profile, const QByteArray& sql) {
    QStringList rows;
    const QByteArray path = (profile + "/Documents/BV_loggies_lite.db").toUtf8();
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK)
        << path.constData();
    const auto take = [](void* all, int columns, char** texts, char**) {
        QStringList row;
        for (int column = 0; column < columns; ++column)
            row += QString::fromUtf8(texts[column]);
        static_cast<QStringList*>(all)->append(row.join(' '));
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(db, sql.constData(), take, &rows, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
    return rows;
}

// A run on a test's adapter that goes on until somebody ends it.
struct endless_run {
    bench_adapter adapter;
    QTemporaryDir profile{folder_in_memory()};
    cli_process run;

    explicit endless_run(const QStringList& words, const QString& input = QProcess::nullDevice())
        : run(adapter.link().first(2) + QStringList{"--profile", profile.path()} + words, {}, input) {}
    qsizetype lines() { return run.out().count('\n') - 1; } // behind the header
    bool prints(qsizetype count) {
        return wait_until([&] { return lines() >= count; }, 30000);
    }
};

} // namespace

TEST(live_commands, exit_statuses_and_lines) {
    const std::tuple<const char*, QStringList, int, int> rows[] = {
        // car          words                                         status, lines
        {"can11", {"log", "--sweeps", "3"}, 0, 4},
        {"can11", {"log", "--pids=0c,0D", "--seconds", "1"}, 0, -1},
        {"can11", {"log", "--pids", "0C,5B", "--sweeps", "2"}, 1, 3}, // the car does not know 5B
        {"can11", {"fuel", "--sweeps", "2"}, 0, 3},
        {"can11", {"boost", "--sweeps", "2"}, 0, 3},
        {"can11", {"o2", "--sweeps", "2"}, 0, 3},
        {"kwp", {"log", "--sweeps", "2"}, 0, 3},
        {"kwp", {"boost", "--sweeps", "2"}, 0, 3},     // the manifold pressure alone
        {"iso9141", {"boost", "--sweeps", "2"}, 1, 0}, // not even that
        {"can11", {"log", "--pids", "0G"}, 2, 0},
        {"can11", {"log", "--pids", "20"}, 2, 0},
        {"can11", {"fuel", "--pids", "0C"}, 2, 0},
        {"can11", {"log", "--sweeps", "0"}, 2, 0},
        {"can11", {"log", "--sweeps", "1", "--seconds", "1"}, 2, 0},
        {"can11", {"log", "0C"}, 2, 0},
        {"can11", {"log", "--pids", "0C", "--when", "0C>60000", "--sweeps", "2"}, 0, 3},
        {"can11", {"log", "--when", "0C=4"}, 2, 0},
        {"can11", {"log", "--before", "5"}, 2, 0},
        {"can11", {"log", "--pids", "0D", "--when", "0C>4"}, 2, 0},
        {"can11", {"log", "--format", "timed", "--sweeps", "2"}, 0, 3},
        {"can11", {"log", "--format", "msl", "--sweeps", "2"}, 0, 6},
        {"can11", {"log", "--format", "mdf4", "--sweeps", "2"}, 2, 0}, // a pipe has no earlier places
        {"can11", {"--anonymous", "log", "--format", "gpx"}, 2, 0},
        {"can11", {"log", "--format", "timed", "--json"}, 2, 0},
    };
    for (const auto& [car, words, status, lines] : rows) {
        cli_process run(QStringList{QString("--demo=") + car} + words);
        EXPECT_EQ(run.status(), status) << words.join(' ').toStdString();
        if (lines >= 0)
            EXPECT_EQ(run.out().count('\n'), lines) << words.join(' ').toStdString() << run.out().constData();
        else
            EXPECT_GT(run.out().count('\n'), 2);
        EXPECT_FALSE(run.progress().isEmpty());
        EXPECT_FALSE(run.progress().contains("Got proper reply")); // not every reply
    }
}

TEST(live_commands, csv_and_json) {
    cli_process csv({"--demo", "--metric", "log", "--pids", "05,5B", "--sweeps", "2"});
    csv.status();
    const QList<QByteArray> lines = csv.out().split('\n');
    EXPECT_TRUE(lines[0].startsWith("time,\"05 ")) << lines[0].constData();
    EXPECT_TRUE(QRegularExpression("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z,\\d+,$")
                    .match(lines[1])
                    .hasMatch())
        << lines[1].constData(); // nothing where no value came

    cli_process json({"--demo", "--json", "--metric", "log", "--pids", "05,5B", "--sweeps", "2"});
    json.status();
    const QList<QByteArray> objects = json.out().trimmed().split('\n');
    ASSERT_EQ(objects.size(), 2);
    const QJsonObject second = QJsonDocument::fromJson(objects[1]).object();
    EXPECT_EQ(second["sweep"].toInt(), 2);
    EXPECT_GT(second["values"]["05"]["value"].toInt(), 10);
    EXPECT_TRUE(second["values"]["05"]["text"].toString().contains("C"));
    EXPECT_TRUE(second["values"]["5B"]["value"].isNull());
}

TEST(live_commands, a_position_is_stored_where_one_is_known) {
    gpsd_stand_in gpsd;
    gpsd.greeting += gpsd_stand_in::fix(1, 52.5) + "\r\n";
    QTemporaryDir profile{folder_in_memory()};
    const QStringList kept{"--profile", profile.path()};
    const auto run = [&](const QStringList& words) {
        cli_process one(kept + words);
        EXPECT_EQ(one.status(), 0) << one.progress().constData();
        return QString::fromUtf8(one.out() + one.progress());
    };
    const QStringList log{"--demo", "log", "--pids", "0C", "--store", "--sweeps", "2"};
    run({"settings", "set", "BV_gpsd", gpsd.place()});
    EXPECT_TRUE(run(log).contains("Position: stored with each sweep, from gpsd at " + gpsd.place() + '\n'));
    run({"settings", "set", "BV_store_position", "false"});
    EXPECT_TRUE(run(log).contains("Position: not stored, as the setting BV_store_position says\n"));
    EXPECT_EQ(gpsd.connections, 1);
    run({"settings", "set", "BV_store_position", "true"});
    const QString timed = run(log + QStringList{"--format", "timed"});
    EXPECT_TRUE(timed.startsWith("Time,RPM,Latitude,Longitude,Altitude,\"GPS speed (m/s)\","))
        << timed.toStdString();
    EXPECT_EQ(timed.count(",52.5,13.25,34.5,16.6,22.1,4.9,"), 2) << timed.toStdString();
    EXPECT_EQ(run(log + QStringList{"--format", "gpx"}).count("<trkpt lat=\"52.5\" lon=\"13.25\">"), 1);
    EXPECT_FALSE(run(QStringList{"--anonymous"} + log + QStringList{"--format", "timed"}).contains("52.5"));

    cli_process shown(kept + QStringList{"--json", "logs", "show", "1"});
    EXPECT_EQ(shown.status(), 0);
    const QJsonArray samples = shown.json()["samples"].toArray();
    ASSERT_EQ(samples.size(), 2);
    EXPECT_EQ(samples[0]["position"]["latitude"], 52.5);
    EXPECT_EQ(samples[1]["position"]["speed_m_s"], 16.6);
    EXPECT_FALSE(run({"--json", "logs", "show", "2"}).contains("position"));
    EXPECT_FALSE(run({"--anonymous", "--json", "logs", "show", "1"}).contains("52.5"));
    run({"logs", "export", "1", "--format", "gpx"});
    cli_process anonymous(kept + QStringList{"--anonymous", "logs", "export", "1", "--format", "gpx"});
    EXPECT_EQ(anonymous.status(), 1);
}

TEST(live_trouble, an_interrupt_ends_the_run_in_order) {
    endless_run live({"log", "--pids", "0C,0D", "--store"});
    ASSERT_TRUE(live.prints(5)) << live.run.progress().constData();
    ::kill(static_cast<pid_t>(live.run.process.processId()), SIGINT);
    EXPECT_EQ(live.run.status(), 0);
    const QString printed = QString::number(live.lines());
    EXPECT_TRUE(live.run.progress().contains(QString(printed + " sweeps in ").toUtf8()))
        << live.run.progress().constData();
    EXPECT_EQ(rows_of(live.profile.path(), "SELECT LOG_TYPE, INFO FROM LOGGIES").join('/'),
              "Log " + printed + " Sample points  ");
    EXPECT_EQ(rows_of(live.profile.path(), "SELECT count(*) FROM LOGGIES_DATA").join('/'), printed);
    EXPECT_EQ(rows_of(live.profile.path(), "PRAGMA journal_mode").join('/'), "delete"); // one plain file
}

TEST(live_commands, a_line_of_input_and_a_signal_are_marks) {
    QTemporaryFile input;
    ASSERT_TRUE(input.open() && input.write("lap 1\nof a \x1b[31mred\x07 car\n\nno line yet") > 0);
    input.close();
    endless_run live({"log", "--pids", "0C", "--store"}, input.fileName());
    ASSERT_TRUE(live.prints(3)) << live.run.progress().constData();
    ::kill(static_cast<pid_t>(live.run.process.processId()), SIGUSR1);
    ASSERT_TRUE(wait_until([&] { return live.run.progress().contains(": Mark 4\n"); }, 30000))
        << live.run.progress().constData();
    ::kill(static_cast<pid_t>(live.run.process.processId()), SIGINT);
    EXPECT_EQ(live.run.status(), 0);
    const QStringList words{"--profile", live.profile.path()};
    cli_process shown(words + QStringList{"--json", "logs", "show", "1"});
    EXPECT_EQ(shown.status(), 0);
    QStringList texts;
    double latest = 0;
    for (const QJsonValue mark : shown.json()["marks"].toArray()) {
        texts += mark["text"].toString();
        EXPECT_GE(mark["ms"].toDouble(), latest);
        latest = mark["ms"].toDouble();
    }
    EXPECT_EQ(texts, (QStringList{"lap 1", "of a [31mred car", "Mark 3", "Mark 4"}));
    EXPECT_LT(latest, 30000);
    cli_process as_text(words + QStringList{"logs", "show", "1"});
    EXPECT_EQ(as_text.status(), 0);
    EXPECT_TRUE(as_text.out().contains(" s: of a [31mred car\n")) << as_text.out().constData();
}

TEST(live_trouble, a_locked_database_leaves_a_gap_and_fails_the_run) {
    endless_run live({"log", "--pids", "0C,0D", "--store"});
    ASSERT_TRUE(live.prints(3)) << live.run.progress().constData();
    auto other = std::make_unique<other_program>(live.profile.filePath("Documents/BV_loggies_lite.db"));
    other->runs("BEGIN IMMEDIATE");
    EXPECT_TRUE(live.prints(live.lines() + 3));
    other.reset();
    EXPECT_TRUE(live.prints(live.lines() + 3));
    ::kill(static_cast<pid_t>(live.run.process.processId()), SIGINT);
    EXPECT_EQ(live.run.status(), 1);
    EXPECT_TRUE(live.run.progress().contains(" could not be stored. ")) << live.run.progress().constData();
    EXPECT_EQ(rows_of(live.profile.path(), "SELECT count(*) FROM LOGGIES_DATA WHERE DATA='~,~'").join('/'),
              "1");
}

TEST(live_trouble, a_reader_that_goes_away_ends_the_run_in_order) {
    bench_adapter adapter;
    QTemporaryDir profile{folder_in_memory()};
    const QStringList words =
        QStringList(BV_CLI) + adapter.link().first(2) +
        QStringList{"--profile", profile.path(), "log", "--pids", "0C", "--store", "| head -n 2"};
    QProcess shell;
    shell.start("sh", {"-c", words.join(' ')});
    EXPECT_TRUE(wait_until([&] { return shell.state() == QProcess::NotRunning; }, 30000));
    EXPECT_EQ(shell.readAllStandardOutput().count('\n'), 2);
    const QStringList info = rows_of(profile.path(), "SELECT INFO FROM LOGGIES");
    EXPECT_TRUE(info.value(0).endsWith(" Sample points  ")) << info.join('/').toStdString();
}

// Killed in the middle, over and over in the same database: what was printed is stored, whole and in order.
// BV_KILLS asks for another number than the usual one.
TEST(live_trouble, a_sudden_end_costs_at_most_the_sweep_in_flight) {
    bench_adapter adapter;
    QTemporaryDir profile{folder_in_memory()};
    std::mt19937 random(20);
    const int rounds = std::max(1, qEnvironmentVariable("BV_KILLS", "20").toInt());
    for (int round = 1; round <= rounds; ++round) {
        cli_process run(adapter.link().first(2) +
                        QStringList{"--profile", profile.path(), "log", "--pids", "0C,0D", "--store"});
        const auto enough = 2 + static_cast<qsizetype>(random() % 150);
        ASSERT_TRUE(wait_until([&] { return run.out().count('\n') >= enough; }, 30000))
            << run.progress().constData();
        run.process.kill();
        ASSERT_TRUE(run.process.waitForFinished());
        const qsizetype printed = run.out().count('\n') - 1;

        EXPECT_EQ(rows_of(profile.path(), "PRAGMA integrity_check").join('/'), "ok");
        const QString log = QString::number(round);
        const QStringList stored =
            rows_of(profile.path(),
                    "SELECT LINE_NUMBER FROM LOGGIES_DATA WHERE LOG_ID=" + log.toUtf8() + " ORDER BY rowid");
        EXPECT_GE(stored.size(), printed);
        EXPECT_LE(stored.size(), printed + 1);
        for (qsizetype line = 0; line < stored.size(); ++line)
            ASSERT_EQ(stored[line], QString::number(line));
    }
    EXPECT_EQ(cli_process({"--profile", profile.path(), "logs", "list"}).status(), 0); // the next start
    EXPECT_EQ(rows_of(profile.path(),
                      "SELECT count(*) FROM LOGGIES JOIN (SELECT LOG_ID, count(*) AS lines FROM "
                      "LOGGIES_DATA GROUP BY LOG_ID) USING (LOG_ID) WHERE INFO = lines || ' Sample "
                      "points  '")
                  .join('/'),
              QString::number(rounds));
}

// What a fast run finds out about an adapter is told by link-info, and a usual run tells what it would give.
TEST(fast_runs, are_offered_and_leave_a_passport) {
    virtual_adapter_server server;
    QString problem;
    server.set_options(*virtual_adapter::adapter_of_kind("stn"));
    const quint16 port = server.start(virtual_adapter::load_car("can11", problem));
    ASSERT_NE(port, 0) << problem.toStdString();
    QTemporaryDir profile;
    const QStringList there{"--profile", profile.path(), "--wifi", QString("127.0.0.1:%1").arg(port)};
    const auto run = [&](const QStringList& words) {
        auto made = std::make_unique<cli_process>(there + words);
        EXPECT_EQ(made->status(), 0) << made->progress().constData();
        return made;
    };
    const auto usual = run({"log", "--pids", "0C,0D,04,0B,11,0E", "--sweeps", "6"});
    EXPECT_TRUE(usual->progress().contains(" times as many values a second: --fast"))
        << usual->progress().constData();
    EXPECT_FALSE(run({"link-info"})->out().contains("By what it does"));

    const auto fast = run({"log", "--fast", "--pids", "0C,0D,04,0B,11,0E", "--sweeps", "6"});
    EXPECT_FALSE(fast->progress().contains("Asked fast")) << fast->progress().constData();
    EXPECT_TRUE(run({"link-info"})->out().contains("By what it does, an adapter that"));
    const QJsonObject passport = run({"--json", "link-info"})->json()["passport"].toObject();
    EXPECT_EQ(passport["most_pids"], 6);
    EXPECT_EQ(passport["no_blanks"], "shown");
    EXPECT_GT(passport["sentences"].toArray().size(), 3);
}

TEST(link_check, prints_verdict_and_rows) {
    cli_process plain({"--demo", "link-check"});
    EXPECT_EQ(plain.status(), 0);
    EXPECT_TRUE(plain.out().startsWith("Good for codes and live data at ")) << plain.out().constData();
    EXPECT_TRUE(plain.out().contains("\n[good] Losses: none in 500 requests\n")) << plain.out().constData();
    EXPECT_TRUE(plain.progress().contains("200 requests made, 0 not answered"));

    cli_process script({"--demo=iso9141", "--json", "link-check"});
    EXPECT_EQ(script.status(), 0);
    const QJsonObject told = script.json();
    EXPECT_EQ(told["requests"], 500);
    EXPECT_EQ(told["unanswered"], 0);
    EXPECT_TRUE(told["done"].toBool());
    EXPECT_EQ(told["grade"].toString().toStdString(), "amber"); // a version that was never made
    EXPECT_TRUE(told["known"].toArray().contains("AT PPS"));
    EXPECT_GT(told["rows"].toArray().size(), 9);
    EXPECT_EQ(cli_process({"--demo", "link-check", "now"}).status(), 2);
}

} // namespace brivant
