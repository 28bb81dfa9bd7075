#include "tests/support/other_program.h"
#include "tests/terminal/cli_process.h"

namespace brivant {

namespace {

QStringList demo(const QStringList& words) {
    return QStringList("--demo") + words;
}

} // namespace

TEST(send, prints_raw_answers) {
    cli_process one(demo({"send", "AT I"}));
    EXPECT_EQ(one.status(), 0);
    EXPECT_EQ(one.out().count('\n'), one.out().count("ELM327") + one.out().count("ATI"))
        << one.out().constData();

    cli_process several(demo({"send", "AT E0", "AT I", "bogus"}));
    EXPECT_EQ(several.status(), 0);
    EXPECT_TRUE(several.out().contains("> AT I\nELM327")) << several.out().constData();
    EXPECT_TRUE(several.out().endsWith("> bogus\n?\n")) << several.out().constData();

    cli_process json(demo({"--json", "send", "AT E0", "01 0C"}));
    EXPECT_EQ(json.status(), 0);
    const QJsonArray answers = json.json()["answers"].toArray();
    ASSERT_EQ(answers.size(), 2);
    EXPECT_EQ(answers.at(1)["command"].toString(), "01 0C");
    EXPECT_TRUE(answers.at(1)["answer"].toArray().last().toString().contains("410C"))
        << json.out().constData();
}

TEST(send, fails_when_nothing_answers) {
    bench_adapter adapter("can11", {.reset_closes = true});
    cli_process run(adapter.link() + QStringList{"send", "AT RV", "AT Z", "AT I"});
    EXPECT_EQ(run.status(), 1);
    EXPECT_FALSE(run.json()["done"].toBool(true));
    EXPECT_EQ(run.json()["answers"].toArray().size(), 2) << "the first was answered, the third not sent";
}

TEST(script, prints_each_command_with_its_answer) {
    cli_process run(demo({"script", "AT L{L}", "0", "1", "2"}));
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.out().count("> AT L00\n"), 2);
    EXPECT_EQ(run.out().count("> AT L01\n"), 2);
}

TEST(console_words, are_checked_before_anything_is_sent) {
    const QList<QStringList> wrong{{"send"},
                                   {"send", ""},
                                   {"send", "01\r04"},
                                   {"send", "01 00", "0 4"}, // without a terminal only with --yes
                                   {"script", "01 {L}", "01", "05"},
                                   {"script", "01 {L}", "xx", "05", "1"},
                                   {"script", "{L}", "01", "05", "1"}, // sends 04
                                   {"logs", "delete", "1"},
                                   {"--yes", "logs", "delete"},
                                   {"logs", "show", "x"}};
    for (const QStringList& words : wrong) {
        cli_process run(demo(words));
        EXPECT_EQ(run.status(), 2) << words.join(' ').toStdString();
        EXPECT_TRUE(run.out().isEmpty());
    }
    cli_process meant(demo({"--yes", "send", "04"}));
    EXPECT_EQ(meant.status(), 0);
}

TEST(logs, of_runs_are_taken_back_and_have_figures) {
    QTemporaryDir folder;
    const auto in_folder = [&](const QStringList& words) {
        return demo(QStringList{"--profile", folder.path(), "--metric"} + words);
    };
    EXPECT_EQ(cli_process(in_folder({"log", "--pids", "0C,0D", "--sweeps", "4", "--store"})).status(), 0);
    cli_process exported(in_folder({"--format", "timed", "logs", "export", "1"}));
    EXPECT_EQ(exported.status(), 0);
    const QString file = exported.out().trimmed();
    cli_process imported(in_folder({"--json", "logs", "import", file}));
    EXPECT_EQ(imported.status(), 0) << imported.progress().constData();
    EXPECT_EQ(imported.json()["id"].toInt(), 2);
    EXPECT_EQ(imported.json()["sweeps"].toInt(), 4);
    QByteArrayList figures;
    for (const char* log : {"1", "2"}) {
        cli_process told(in_folder({"--json", "logs", "figures", log}));
        EXPECT_EQ(told.status(), 0);
        figures += told.out();
        EXPECT_EQ(told.json()["columns"].toArray().at(1)["samples"].toInt(), 4);
        EXPECT_TRUE(told.json()["fuel_l"].isNull());
        EXPECT_GT(told.json()["duration_s"].toDouble(), 0);
    }
    EXPECT_EQ(figures[0], figures[1]);
    cli_process as_text(in_folder({"logs", "figures", "1"}));
    EXPECT_EQ(as_text.status(), 0);
    EXPECT_TRUE(as_text.out().contains("Fuel used: the run has no fuel rate (PID 5E)\n"));
    EXPECT_TRUE(as_text.out().contains("Vehicle speed (kph): ")) << as_text.out().constData();
    EXPECT_EQ(cli_process(in_folder({"logs", "import", "/dev/null"})).status(), 1);
    EXPECT_EQ(cli_process(in_folder({"logs", "import"})).status(), 2);
}

TEST(logs, are_shown_and_deleted) {
    QTemporaryDir folder;
    const auto in_folder = [&](const QStringList& words) {
        return demo(QStringList{"--profile", folder.path()} + words);
    };
    EXPECT_EQ(cli_process(in_folder({"--log", "read-codes"})).status(), 0);
    EXPECT_EQ(cli_process(in_folder({"--log", "misfire"})).status(), 0);

    cli_process shown(in_folder({"logs", "show", "1"}));
    EXPECT_EQ(shown.status(), 0);
    EXPECT_TRUE(shown.out().contains("P0133")) << shown.out().constData();
    cli_process as_json(in_folder({"--json", "logs", "show", "2"}));
    EXPECT_EQ(as_json.status(), 0);
    EXPECT_EQ(as_json.json()["type"].toString(), "Misfire");
    EXPECT_EQ(as_json.json()["lines"].toArray().size(), 2);
    QProcess to_full_disk;
    to_full_disk.setStandardOutputFile("/dev/full");
    to_full_disk.start(BV_CLI, {"--profile", folder.path(), "logs", "show", "1"});
    ASSERT_TRUE(to_full_disk.waitForFinished());
    EXPECT_EQ(to_full_disk.exitCode(), 1) << "what was not printed was not shown";

    EXPECT_EQ(cli_process(in_folder({"--yes", "logs", "delete", "1", "9"})).status(), 1);
    EXPECT_EQ(cli_process(in_folder({"logs", "show", "1"})).status(), 0) << "nothing was deleted";
    cli_process deletion(in_folder({"--yes", "--json", "logs", "delete", "1"}));
    EXPECT_EQ(deletion.status(), 0);
    EXPECT_EQ(deletion.json()["deleted"].toInt(), 1);
    EXPECT_EQ(cli_process(in_folder({"logs", "show", "1"})).status(), 1);
    cli_process rest(in_folder({"--json", "logs", "list"}));
    EXPECT_EQ(rest.status(), 0);
    EXPECT_EQ(rest.json()["logs"].toArray().size(), 1);

    // Made by a newer version of the program: it can be read all the same, and is not changed.
    other_program(folder.filePath("Documents/BV_loggies_lite.db"))
        .runs("PRAGMA user_version=9; UPDATE LOGGIES SET LOG_TYPE='%4%1'");
    cli_process list(in_folder({"logs", "list"}));
    EXPECT_EQ(list.status(), 0);
    EXPECT_TRUE(list.out().contains("%4%1      Cur Veh.  ")) << list.out().constData();
    EXPECT_EQ(cli_process(in_folder({"logs", "show", "2"})).status(), 0);
    EXPECT_EQ(cli_process(in_folder({"--yes", "logs", "delete", "2"})).status(), 1);
}

} // namespace brivant
