#include "tests/terminal/cli_process.h"

#include <csignal>
#include <memory>

namespace brivant {

// The real program on a real socket whose far end misbehaves.

using virtual_adapter::faults;

// What each fault does to each operation is tested without sockets; here the statuses and the words.
TEST(faults_on_the_line, are_mended_or_told) {
    struct row {
        faults what;
        int status;
        const char* said; // a part of what the person is told
        QString car = "can11";
    };
    const char* read = "Codes read!. Scroll for full description";
    const row rows[] = {
        {{.late_reply = 11, .late_ms = 3300}, 0, read},
        {{.silent_from = 12}, 1, "The link was open, but no answer came within the time allowed"},
        {{.cut_after = 5}, 1, "Disconnected"},
        {{.reset_closes = true}, 0, read}, // opened again, and set up without one
        {{.refused = {"ATH1"}}, 1, "AT H1 not supported by current chip"},
        {{}, 1, "The adapter answers, but the car does not", BV_TESTS "/terminal/ignition_off.car"},
    };
    std::vector<std::unique_ptr<bench_adapter>> adapters;
    std::vector<std::unique_ptr<cli_process>> runs;
    for (const row& row : rows) { // all at once: the silent one takes five time-outs
        adapters.push_back(std::make_unique<bench_adapter>(row.car, row.what));
        runs.push_back(std::make_unique<cli_process>(adapters.back()->link() << "read-codes"));
    }
    for (size_t i = 0; i < runs.size(); ++i) {
        SCOPED_TRACE(rows[i].said);
        EXPECT_EQ(runs[i]->status(), rows[i].status);
        EXPECT_TRUE(runs[i]->said().contains(rows[i].said)) << runs[i]->said().toStdString();
        EXPECT_EQ(runs[i]->json()["done"].toBool(), rows[i].status == 0);
        EXPECT_EQ(codes_of(runs[i]->json()).join(", "), rows[i].status == 0 ? "P0133 7E8, P0220 7E8" : "");
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

TEST(faults, a_report_that_cannot_be_stored_is_told_by_the_exit_status) {
    const QTemporaryDir profile;
    for (int starts = 0; starts < 2; ++starts)
        EXPECT_EQ(cli_process({"--profile", profile.path(), "vehicles", "list"}).status(), 0);
    const faulty_disk full{"BV_FAIL_AT", "1+", profile.filePath("told"), "BV_loggies_lite.db"};
    cli_process cli({"--profile", profile.path(), "--demo", "--log", "read-codes"}, full);
    EXPECT_EQ(cli.status(), 1);
    EXPECT_NE(full.struck(), "");
    EXPECT_TRUE(cli.progress().contains("results are not stored")) << cli.progress().constData();
    EXPECT_TRUE(cli.out().contains("P0")) << "what was read is printed";
}

} // namespace brivant
