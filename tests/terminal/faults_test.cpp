#include "tests/terminal/cli_process.h"

#include <csignal>
#include <memory>

// The real program on a real socket whose far end misbehaves.

using virtual_adapter::faults;

TEST(faults_on_the_line, are_mended_or_told) {
    struct row {
        const char* why;
        faults what;
        int status;
        const char* said; // a part of what the person is told
        const char* car = "can11";
    };
    const char* read = "Codes read!. Scroll for full description";
    const row rows[] = {
        {"none", {}, 0, read},
        {"every byte by itself", {.split = true}, 0, read},
        {"two replies in one write", {.glue_reply = 7}, 0, read},
        {"noise before replies", {.garbage_before = "#\xC3\xBC\r", .garbage_every = 2}, 0, read},
        {"noise inside every fifth reply", {.garbage_inside = "<", .garbage_every = 5}, 0, read},
        {"lines are lost", {.lose_every = 9}, 0, read},
        {"a late reply", {.late_reply = 11, .late_ms = 3300}, 0, read},
        {"no DPN at first", {.late_reply = 6, .late_ms = 6300}, 0, read},
        {"silence", {.silent_from = 12}, 1, "The link was open, but no answer came within the time allowed"},
        {"cut", {.cut_after = 5}, 1, "Disconnected"},
        {"cut by the reset", {.reset_closes = true}, 0, read}, // opened again, and set up without one
        {"no headers", {.refused = {"ATH1"}}, 1, "AT H1 not supported by current chip"},
        {"no ignition", {}, 1, "The adapter answers, but the car does not", BV_TEST_DATA "/ignition_off.car"},
    };
    std::vector<std::unique_ptr<bench_adapter>> adapters;
    std::vector<std::unique_ptr<cli_process>> runs;
    for (const row& row : rows) { // all at once: the silent one takes five time-outs
        adapters.push_back(std::make_unique<bench_adapter>(row.car, row.what));
        runs.push_back(std::make_unique<cli_process>(adapters.back()->link() << "read-codes"));
    }
    for (size_t i = 0; i < runs.size(); ++i) {
        EXPECT_EQ(runs[i]->status(), rows[i].status) << rows[i].why;
        EXPECT_TRUE(runs[i]->said().contains(rows[i].said))
            << rows[i].why << ": " << runs[i]->said().toStdString();
        EXPECT_EQ(runs[i]->json()["done"].toBool(), rows[i].status == 0) << rows[i].why;
        EXPECT_EQ(codes_of(runs[i]->json()).join(", "), rows[i].status == 0 ? "P0133 7E8, P0220 7E8" : "")
            << rows[i].why;
    }
}

// Cut in the middle of the operation: what is stored can be shown, and the next run on the same profile is as
// any other.
TEST(faults_on_the_line, a_cut_ends_each_operation_and_leaves_no_half_log) {
    struct cut_run {
        const char* name;
        int cut;        // after this answer
        qsizetype logs; // of what came before the cut, and of one whole run
        QTemporaryDir profile{};
        bench_adapter adapter{"can11", {.cut_after = cut}};
        std::unique_ptr<cli_process> run = start();

        std::unique_ptr<cli_process> start() const {
            const QStringList words{"--log", "--profile", profile.path(), name};
            return std::make_unique<cli_process>(adapter.link() + words);
        }
    };
    cut_run cuts[] = {{"read-codes", 13, 1}, {"pending", 18, 1},  {"vehicle-info", 30, 1}, {"mode6", 25, 1},
                      {"misfire", 16, 1},    {"o2-tests", 15, 1}, {"extras", 20, 0},       {"report", 18, 3}};
    for (cut_run& cut : cuts) {
        EXPECT_EQ(cut.run->status(), 1) << cut.name;
        EXPECT_TRUE(cut.run->said().contains("Disconnected")) << cut.run->said().toStdString();
        EXPECT_FALSE(cut.run->json()["done"].toBool());
        cut.adapter.server.set_faults({});
        cut.run = cut.start();
    }
    for (cut_run& cut : cuts) {
        SCOPED_TRACE(cut.name);
        EXPECT_EQ(cut.run->status(), 0);
        const QStringList reading{"--json", "--profile", cut.profile.path(), "logs"};
        cli_process list(reading + QStringList{"list"});
        EXPECT_EQ(list.status(), 0);
        const QJsonArray stored = list.json()["logs"].toArray();
        EXPECT_EQ(stored.size(), cut.logs);
        for (const QJsonValue log : stored) {
            cli_process text(reading + QStringList{"export", QString::number(log["id"].toInt())});
            EXPECT_EQ(text.status(), 0);
            EXPECT_TRUE(text.out().startsWith("------")) << text.out().constData();
        }
    }
}

TEST(interrupt, leaves_the_operation_with_1) {
    for (const int signal : {SIGINT, SIGTERM}) {
        bench_adapter adapter("can11", {.delay_ms = 1000});
        bool asked = false;
        adapter.server.set_observer([&](const virtual_adapter::exchange&) { asked = true; });
        cli_process run(adapter.link() << "read-codes");
        ASSERT_TRUE(wait_until([&] { return asked; }));
        kill(pid_t(run.process.processId()), signal);
        EXPECT_EQ(run.status(), 1);
        EXPECT_FALSE(run.json()["done"].toBool());
        EXPECT_TRUE(run.said().endsWith("Stopped"));
    }
}

TEST(interrupt, gives_up_a_link_that_does_not_open) {
    cli_process run({"--wifi", "127.0.0.1:1", "read-codes"}); // nobody listens there
    ASSERT_TRUE(wait_until([&] { return run.progress().contains("Couldn't connect"); }));
    kill(pid_t(run.process.processId()), SIGINT);
    EXPECT_EQ(run.status(), 1);
    EXPECT_EQ(run.out(), "");
}
