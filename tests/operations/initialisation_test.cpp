#include "base/console_log.h"
#include "operations/inner_process_pid_support.h"
#include "tests/support/conversation.h"
#include "tests/support/print_qt.h"

#include <QFile>
#include <gtest/gtest.h>

// What every operation stands on, with talks of the test's own. Whole initialisations with an operation
// behind them are played in tests/diagnostics.

namespace {

class plain_car : public car_talk {
public:
    using car_talk::car_talk;
    void begin(std::function<talk()> what) {
        start({1, QString(), QStringLiteral("left: %@"), nullptr, std::move(what)});
    }
};

talk set_up(car_talk& car) {
    co_await car.ready(QString());
}

talk list_tests(car_talk& car, QString& found) {
    car.state.cur_protocol = 6;
    car.state.headers_shown = car.state.adapter_ready = true;
    obd_groups ecus;
    co_await inner_process_pid_support(car, QStringLiteral("06"), ecus);
    found = text_of(ecus);
}

class initialisation : public testing::Test, protected adapter_bench {
protected:
    plain_car car{state, link, toolies, view};
    QString ended = "no";
    QString found = "nothing yet"; // by a loop for another service
    bool told_ready = false;       // to whom it may concern, when the condition of the link last changed

    initialisation() {
        link.set_controller(&car);
        view.events.clear();
        car.operation_ended = [this](bool done) { ended = done ? "done" : "failed"; };
        actions["start"] = [this](const QString&) { begin([this] { return set_up(car); }); };
        actions["loop"] = [this](const QString&) { begin([this] { return list_tests(car, found); }); };
        QObject::connect(&link, &adapter_link::condition_changed, &link,
                         [this] { told_ready = state.adapter_ready; });
        facts["told"] = [this] { return told_ready ? "ready" : "not ready"; };
        facts["found"] = [this] { return found; };
        facts["ended"] = [this] { return ended; };
    }
    ~initialisation() override { link.set_controller(nullptr); }
    void begin(std::function<talk()> what) {
        ended = "no";
        car.begin(std::move(what));
        clock.advance(800);
    }
    QString played(const QString& text) { return play(conversation::parse(text, "line"), *this); }
};

const QString begun = "! start\n> AT Z\n< ELM327\n> AT E0\n< OK\n> AT I\n< ELM327\n";

} // namespace

TEST_F(initialisation, asks_other_services_for_their_maps) {
    // A vehicle with other PIDs is stored: nothing is asked about it, and its list stays.
    EXPECT_EQ(
        played("! stored 7E8 01 03\n"
               "! loop\n"
               "> 06 00\n< 7E8 06 46 00 C0 00 00 01 \n"
               "> 06 20\n< 7E8 06 46 20 80 00 00 01 \n"
               "> 06 40\n< ?\n"
               "= found 7E8 01 02 20 21 40\n= ended done\n= pids \n= stored 7E8 01 03\n= never question"),
        "");
    // An answer to another request adds nothing.
    EXPECT_EQ(
        played("! loop\n> 06 00\n< 7E8 06 46 00 80 00 00 00 \n< 7E9 06 41 00 FF FF FF FF \n= found 7E8 01"),
        "");
    EXPECT_EQ(played("! loop\n> 06 00\n< 7F 06 11\n! again 3\n= found \n= ended done"), "");
    EXPECT_EQ(played("! loop\n> 06 00\n< 7E8 06 46 00 80 00 00 01 \n> 06 20\n< #\n! again 3\n"
                     "= shown message: Failed to receive available PIDs \n= ended failed"),
              "");
}

TEST_F(initialisation, finds_the_car_behind_a_chip_that_refuses_headers) {
    EXPECT_EQ(played(begun + "> AT DP\n< AUTO\n> AT H1\n< ?\n! again 3\n= told not ready\n> AT DPN\n< A6\n"
                             "> 01 00 |12\n< 41 00 C0 00 00 01 \n> AT DPN\n< A6\n"
                             "> 01 00\n< 7F 01 12\n> 01 00\n< 41 00 C0 00 00 01 \n< 41 00 80 00 00 00 \n"
                             "> 01 20\n< 41 20 80 00 00 00 \n"
                             "= shown status: AT H1 not supported by current chip\n= never message\n"
                             "= pids  01 02 20 21\n= ready yes\n= told ready\n= ended done"),
              "");
}

TEST_F(initialisation, an_adapter_that_never_goes_automatic_is_given_up) {
    const QString start = "! start\n> AT E0\n< OK\n> AT E0\n< OK\n> AT I\n< ELM327\n";
    const QString untold = "> AT DP\n< #\n! again 3\n";
    QString talk = begun;
    for (int round = 0; round < 20; ++round)
        talk += "> AT DP\n< SAE J1850 PWM\n> AT SP A3\n< OK\n";
    talk += "> AT DP\n< SAE J1850 PWM\n= shown status: connect_2_interface::Did not fully complete [ the "
            "adapter\n"
            "= never message\n= ended failed";
    EXPECT_EQ(played(talk), "");
    for (int sequence = 0; sequence < 2; ++sequence) // each bears one such answer, and ends with the second
        EXPECT_EQ(played(start + untold + "> AT SP A3\n< OK\n" + untold +
                         "= shown status: The adapter does not tell its protocol\n= ended failed"),
                  "");
}

// Blank lines, another system's line ends, NUL, notices before the answer, a prompt glued to what follows.
TEST_F(initialisation, bears_the_noise_of_adapters) {
    EXPECT_EQ(
        played(
            "! start\n> AT Z\n| AT Z\\r\\r\\n\\r\\nELM327 v1.5\\r\\n\\r\\n>\n"
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
    const std::pair<const char*, const char*> rows[] = {
        {"A6", "6"}, {"a3", "3"}, {"AC", "12"}, {"A0", "0"}, {"NO DATA", "-1"},
    };
    QString start = begun;
    for (const auto& [told, number] : rows) {
        EXPECT_EQ(played(start + "> AT DP\n< AUTO\n> AT H1\n< OK\n> AT DPN\n< " + told +
                         "\n> 01 00 |12\n= protocol " + number + "\n! close"),
                  "")
            << told;
    }
    // The second time it must be told, or there is no layout to read the maps by.
    EXPECT_EQ(played(start +
                     "> AT DP\n< AUTO\n> AT H1\n< OK\n> AT DPN\n< A6\n> 01 00 |12\n< 41 00 80 00 00 00\n"
                     "> AT DPN\n< NO DATA\n= shown message: {DLG_FAILED_RCV_PIDS}\n= ended failed"),
              "");
}

// A list that cannot be stored is a line in the log, and the operation starts.
TEST_F(initialisation, goes_on_when_the_database_is_gone) {
    ASSERT_TRUE(QFile::remove(profile.db.path()) && QDir().mkpath(profile.db.path()));
    const QString log = profile.folder.filePath("log");
    ASSERT_TRUE(redirect_console_log(log));
    EXPECT_EQ(played(begun +
                     "> AT DP\n< AUTO\n> AT H1\n< OK\n> AT DPN\n< A6\n> 01 00 |12\n"
                     "< 7E8 06 41 00 80 00 00 00\n> AT DPN\n< A6\n> 01 00\n< 7E8 06 41 00 80 00 00 00\n"
                     "= ready yes\n= ended done"),
              "");
    silence_console_log();
    QFile opened(log);
    ASSERT_TRUE(opened.open(QIODevice::ReadOnly));
    EXPECT_TRUE(opened.readAll().contains(
        "reacCods>m::connect_2_interface >> Did not save avail pids to VEHICLES.XTRA_INFO"));
}
