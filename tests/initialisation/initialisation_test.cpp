#include "base/console_log.h"
#include "initialisation/connect_2_interface.h"
#include "tests/support/conversation.h"

#include <QFile>
#include <gtest/gtest.h>

// The adapter initialisation and the supported-PID loop with the plainest controller there can be. Whole
// initialisations with an operation behind them are played in tests/diagnostics.

namespace {

class plain_controller : public task_controller {
public:
    explicit plain_controller(adapter_bench& its_bench)
        : bench(its_bench), context{bench.state, bench.link, bench.toolies, bench.view, {}, {}},
          pid_loop(context, *this), connector(context, *this, pid_loop) {}

    adapter_bench& bench;
    operation_context context;
    inner_process_pid_support pid_loop;
    connect_2_interface connector;
    QString cur_reply_cp;
    QString found = "nothing yet"; // by a loop for another service

    void work_current_task(const QString&) override {
        if (bench.link.is_redo())
            bench.link.send_again();
        else if (bench.state.cur_task == op_initialise)
            connector.run(cur_reply_cp);
    }
    void handleOBDRcvdMsg(const QString& reply) override {
        cur_reply_cp = reply;
        if (bench.state.pid_loop_active == 16)
            pid_loop.l_inner_process_pid_support(reply);
        else
            work_current_task({});
    }
    void leave_cur_op_gracefully(const QString& status) override {
        bench.link.stop_timers();
        bench.state.pid_loop_active = bench.state.cur_step = -1;
        bench.view.show_status(status);
    }
    void set_status_msg(const QString& status) override { bench.view.show_status(status); }
    void handleOBDToast(const QString&) override {}
};

class initialisation : public testing::Test, protected adapter_bench {
protected:
    plain_controller controller{*this};
    bool told_ready = false; // to whom it may concern, when the condition of the link last changed

    initialisation() {
        link.set_controller(&controller);
        view.events.clear();
        // Straight into a step, as after its command was sent.
        actions["step"] = [this](const QString& step) {
            link.openInterfaceConnection();
            clock.advance(800);
            state.cur_task = op_initialise;
            state.cur_step = step.toInt();
            controller.connector.run(controller.cur_reply_cp);
        };
        actions["loop"] = [this](const QString& mode) {
            link.openInterfaceConnection();
            clock.advance(800);
            state.cur_protocol = 6;
            state.headers_shown = true;
            const QString suffix = mode == "02" ? " 00" : "";
            controller.pid_loop.start(mode, suffix, 201,
                                      [this](const obd_groups& ecus) { controller.found = text_of(ecus); });
        };
        QObject::connect(&link, &adapter_link::condition_changed, &link,
                         [this] { told_ready = state.adapter_ready; });
        facts["told"] = [this] { return told_ready ? "ready" : "not ready"; };
        facts["found"] = [this] { return controller.found; };
        facts["step"] = [this] { return QString::number(state.cur_step); };
        facts["task"] = [this] { return QString::number(state.cur_task); };
        state.cur_task = op_read_codes;
    }
    QString played(const QString& text) { return play(conversation::parse(text, "line"), *this); }
};

} // namespace

TEST_F(initialisation, asks_other_services_for_their_maps) {
    // A vehicle with other PIDs is stored: nothing is asked about it, and its list stays.
    EXPECT_EQ(played("! stored 7E8 01 03\n"
                     "! loop 06\n"
                     "> 06 00\n< 7E8 06 46 00 C0 00 00 01 \n"
                     "> 06 20\n< 7E8 06 46 20 80 00 00 01 \n"
                     "> 06 40\n< ?\n"
                     "= found 7E8 01 02 20 21 40\n= step 201\n= pids \n= stored 7E8 01 03\n= never question"),
              "");
    // Service 02 echoes the number of the freeze frame before the map.
    EXPECT_EQ(played("! loop 02\n> 02 00 00\n< 7E8 07 42 00 00 58 18 00 00 \n= found 7E8 02 04 05 0C 0D"),
              "");
    // An answer to another request adds nothing.
    EXPECT_EQ(
        played(
            "! loop 06\n> 06 00\n< 7E8 06 46 00 80 00 00 00 \n< 7E9 06 41 00 FF FF FF FF \n= found 7E8 01"),
        "");
    EXPECT_EQ(played("! loop 06\n> 06 00\n< 7F 06 11\n! again 3\n= found \n= step 201"), "");
    EXPECT_EQ(played("! loop 06\n> 06 00\n< 7E8 06 46 00 80 00 00 01 \n> 06 20\n< #\n! again 3\n"
                     "= shown message: Failed to receive available PIDs \n= step -1"),
              "");
}

TEST_F(initialisation, finds_the_car_behind_a_chip_that_refuses_headers) {
    controller.cur_reply_cp = "~"; // "AT H1" was given up
    EXPECT_EQ(played("! step 333\n= told not ready\n> AT DPN\n< A6\n> 01 00 |12\n< 41 00 C0 00 00 01 \n"
                     "> AT DPN\n< A6\n"
                     "> 01 00\n< 7F 01 12\n> 01 00\n< 41 00 C0 00 00 01 \n< 41 00 80 00 00 00 \n"
                     "> 01 20\n< 41 20 80 00 00 00 \n"
                     "= shown status: AT H1 not supported by current chip\n= never message\n"
                     "= pids  01 02 20 21\n= ready yes\n= told ready\n= step 0"),
              "");
}

TEST_F(initialisation, the_further_steps_that_no_step_leads_to) {
    state.cur_protocol = 6;
    controller.cur_reply_cp = "NODATA";
    EXPECT_EQ(played("! step 402\n> AT H0\n= shown status: No data for [01 20] .. trying next\n! close"), "");
    controller.cur_reply_cp = "7E806412080000000";
    EXPECT_EQ(played("! step 402\n> AT H0\n! close"), "");
    controller.cur_reply_cp = "7E806412080000001";
    EXPECT_EQ(played("! step 402\n> 01 40\n< NO DATA\n> AT H0\n< OK\n= ready yes\n= task 1\n= step 0"), "");
    controller.cur_reply_cp = "~";
    EXPECT_EQ(played("! step 403\n= shown message: Failed to receive available PIDs \n= step -1"), "");
}

TEST_F(initialisation, an_adapter_that_never_goes_automatic_is_given_up) {
    const QString start = "! step 0\n> AT E0\n< OK\n> AT E0\n< OK\n> AT I\n< ELM327\n";
    const QString untold = "> AT DP\n< #\n! again 3\n";
    QString talk = "! step 0\n> AT Z\n< ELM327\n> AT E0\n< OK\n> AT I\n< ELM327\n";
    for (int round = 0; round < 20; ++round)
        talk += "> AT DP\n< SAE J1850 PWM\n> AT SP A3\n< OK\n";
    talk += "> AT DP\n< SAE J1850 PWM\n= shown status: connect_2_interface::Did not fully complete [ the "
            "adapter\n"
            "= never message\n= step -1";
    EXPECT_EQ(played(talk), "");
    EXPECT_EQ(state.warn_no_reply, -1);
    for (int sequence = 0; sequence < 2; ++sequence) // each bears one such answer, and ends with the second
        EXPECT_EQ(played(start + untold + "> AT SP A3\n< OK\n" + untold +
                         "= shown status: The adapter does not tell its protocol\n= step -1"),
                  "");
}

// Blank lines, another system's line ends, NUL, notices before the answer, a prompt glued to what follows.
TEST_F(initialisation, bears_the_noise_of_adapters) {
    EXPECT_EQ(
        played(
            "! step 0\n> AT Z\n| AT Z\\r\\r\\n\\r\\nELM327 v1.5\\r\\n\\r\\n>\n"
            "> AT E0\n| \\0OK\\r\\n\\0\\r\\n>\n> AT I\n| ELM327\\r>\\r\\n\n"
            "> AT DP\n| Auto, ISO 14230-4 (KWP FAST)\\r\\r>\n> AT H1\n| \\r\\rOK\\r>\n> AT DPN\n| a5\\r\\r>\n"
            "> 01 00 |12\n| BUS INIT: ...OK\\r\\n86 F1 10 41 00 80 00 00 00 48 \\r\\n\\r\\n>\n> AT DPN\n< "
            "A5\n"
            "> 01 00\n| STOPPED\\r\\r>\n> 01 00\n| BUFFER FULL\\r>\n> 01 00\n"
            "| 86 F1 10 41 00 <DATA ERROR\\r86 F1 11 41 00 80 00 00 00 49 \\r>\n"
            "= pids 86F111 01\n= ready yes\n= never message"),
        "");
}

TEST_F(initialisation, the_protocol_number) {
    const QString start = "! step 333\n> AT DPN\n";
    const std::pair<const char*, const char*> rows[] = {
        {"A6", "6"}, {"a3", "3"}, {"AC", "12"}, {"A0", "0"}, {"NO DATA", "-1"},
    };
    for (const auto& [told, number] : rows) {
        state.cur_protocol = 5;
        EXPECT_EQ(played(start + "< " + told + "\n> 01 00 |12\n= protocol " + number + "\n! close"), "")
            << told;
    }
    // The second time it must be told, or there is no layout to read the maps by.
    controller.cur_reply_cp = "NODATA";
    EXPECT_EQ(played("! step 401\n= shown message: {DLG_FAILED_RCV_PIDS}\n= step -1"), "");
}

// A list that cannot be stored is a line in the log, and the operation starts.
TEST_F(initialisation, goes_on_when_the_database_is_gone) {
    ASSERT_TRUE(QFile::remove(profile.db.path()) && QDir().mkpath(profile.db.path()));
    const QString log = profile.folder.filePath("log");
    ASSERT_TRUE(redirect_console_log(log));
    controller.cur_reply_cp = "7E8064100800000007E9";
    state.available_pids = ecus_of("7E8 01");
    EXPECT_EQ(played("! step 5\n= ready yes\n= task 1\n= step 0"), "");
    silence_console_log();
    QFile opened(log);
    ASSERT_TRUE(opened.open(QIODevice::ReadOnly));
    EXPECT_TRUE(opened.readAll().contains(
        "reacCods>m::connect_2_interface >> Did not save avail pids to VEHICLES.XTRA_INFO"));
}
