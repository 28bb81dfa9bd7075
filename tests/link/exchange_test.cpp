#include "tests/link/link_bench.h"

namespace brivant {

// One command and its reply: what comes is cut, checked, asked for again, given up, timed.

class exchange_of : public link_test {
protected:
    exchange_of() { open(); }
};

TEST_F(exchange_of, a_reply_ends_at_the_prompt) {
    ask("AT I", "ELM");
    const QString reply = "ELM327 v1.5\r\r>";
    for (const QChar character : reply) {
        EXPECT_EQ(heard(), "");
        adapter->receive(character);
    }
    EXPECT_EQ(heard(), "reply ELM327v1.5");

    const std::array<std::array<QString, 4>, 7> rows{{
        // command, expected, received, heard
        {"AT I", "ELM", "ELM1\r>rest", "reply ELM1"},
        {"AT I", "ELM", "ELM2>ELM3\r>ELM4", "reply ELM2"},
        {"AT I", "ELM", "\r\nELM5\r\n>", "reply ELM5"},
        {"AT I", "ELM", "ELM6\rmore>", "reply ELM6\rmore"},
        {"01 00", "4100", "SEARCHING...\r41 00 BE\r\r>", "reply 4100BE"},
        {"01 00", "4100", "BUS INIT: ...OK\r41 00 BE\r\r>", "reply BUSINIT:OK\r4100BE"},
        {"01 00", "4100", "NO DATA\r\r>", "reply NODATA"},
    }};
    for (const auto& [command, expected, received, told] : rows) {
        ask(command, expected); // what came before the command does not answer it
        adapter->receive(received);
        EXPECT_EQ(heard(), told) << received.toStdString();
    }
}

TEST_F(exchange_of, the_text_after_a_prompt_stays) {
    ask("AT I", "ELM");
    adapter->receive("ELM>4100>4120>");
    adapter->receive("BE>");
    EXPECT_EQ(heard(), "reply ELM"); // no command was waiting for the rest
    ask("AT I", "ELM");
    adapter->receive("ELM 2>");
    EXPECT_EQ(heard(), "reply ELM2");
}

TEST_F(exchange_of, an_oversize_reply_is_not_decoded) {
    const QString much = QString("7E8064100BE3FA813\r").repeated(1000);
    ask("01 00", "4100");
    adapter->receive(much);
    adapter->receive(much + ">");
    EXPECT_EQ(heard(), "");
    clock.advance(100);
    EXPECT_EQ(sent(), "01 00, 01 00");
    adapter->receive("4100BE>");
    ask("AT RV", "8|9|1"); // takes any text, but not this one
    adapter->receive(much + ">");
    clock.advance(100);
    EXPECT_EQ(sent(), "AT RV, AT RV");
    adapter->receive("12.3V>");
    EXPECT_EQ(heard(), "reply 4100BE, reply 12.3V");
    ask("01 00", "4100"); // as large as allowed
    const QString most = much.first(rx_buffer::limit - 1);
    adapter->receive(most + ">");
    EXPECT_TRUE(heard().startsWith("reply 7E80641"));
}

TEST_F(exchange_of, an_unconfirmed_command_is_sent_three_times_more) {
    for (const auto& [word, boxes] : {std::pair("ERR94", 1), std::pair("STOPPED", 0), std::pair("?", 0)}) {
        view.events.clear();
        if (boxes == 1) { // else it was shown already
            set_up("AT Z");
            adapter->receive("ELM>");
            forget();
        }
        ask("01 00|12.0", "4100");
        for (int tries = 1; tries <= 4; ++tries) {
            EXPECT_EQ(sent(), "01 00");
            EXPECT_EQ(heard(), "");
            clock.advance(11999); // the time-out of the command holds for each try
            adapter->receive(QString(word) + "\r\r>");
            EXPECT_EQ(sent(), ""); // the adapter is given a moment
            clock.advance(100);
        }
        EXPECT_EQ(heard(), "reply ~");
        EXPECT_EQ(sent(), "");
        EXPECT_EQ(view.events.count("status: Didn't get a confirmation from interface ... Trying again"), 3);
        EXPECT_EQ(view.events.filter("message: The adapter reports a fault of its own (ERR94)").size(),
                  boxes);
    }
    view.events.clear();
    set_up("AT I"); // a "?" keeps the box away by itself
    for (int tries = 1; tries <= 4; ++tries, clock.advance(100))
        adapter->receive("?\r\r>");
    EXPECT_TRUE(view.events.filter("message").isEmpty());
}

TEST_F(exchange_of, an_accepted_reply_ends_the_run_of_refused_ones) {
    for (int times = 0; times < 5; ++times) {
        ask("AT I", "ELM");
        adapter->receive("#>");
        clock.advance(100);
        adapter->receive("ELM>");
        EXPECT_EQ(heard(), "reply ELM");
    }
}

TEST_F(exchange_of, time_outs) {
    const std::pair<const char*, int> rows[] = {
        {"AT I", 3},     {"AT I|12.0", 12}, {"AT I", 3},      {"AT I|12.9", 12}, {"AT I|0", 3},
        {"AT I|0.9", 3}, {"AT I|-5", 3},    {"AT I|x", 3},    {"AT I|", 3},      {"AT I|nan", 3},
        {"AT I|5|7", 3}, {"AT I|1e99", 3},  {"AT I|12,5", 3}, {"AT I| 7 ", 7},   {"AT I|600", 600},
    };
    for (const auto& [command, seconds] : rows) {
        ask(command, "ELM");
        EXPECT_EQ(sent(), "AT I") << command;
        clock.advance(seconds * 1000 - 1);
        EXPECT_EQ(sent(), "") << command;
        clock.advance(1);
        EXPECT_EQ(sent(), "AT I") << command;
        adapter->receive("ELM>ELM>");
        EXPECT_EQ(heard(), "reply ELM") << command;
    }
}

// A search for the protocol would begin anew with each try.
TEST_F(exchange_of, a_search_is_waited_for) {
    for (const char* notice : {"SEARCHING...", "SEARCH|ING", "BUS INIT: ..."}) {
        ask("01 00|12.0", "4100");
        EXPECT_EQ(sent(), "01 00");
        clock.advance(11000);
        for (const QString& piece : QString(notice).split('|'))
            adapter->receive(piece);
        EXPECT_TRUE(view.last("status").startsWith("The adapter is looking for the car's protocol"));
        clock.advance(20000);
        adapter->receive(".");
        clock.advance(19999);
        EXPECT_EQ(sent(), "") << notice;
        clock.advance(1);
        EXPECT_EQ(sent(), "01 00") << notice;
        adapter->receive("4100BE3FA813\r>4100BE3FA813\r>");
        EXPECT_EQ(heard(), "reply 4100BE3FA813") << notice;
    }
}

TEST_F(exchange_of, five_time_outs_close_the_link) {
    ask("AT I", "ELM");
    for (int n = 1; n <= 4; ++n) {
        clock.advance(3000);
        EXPECT_EQ(sent(), n == 1 ? "AT I, AT I" : "AT I");
        EXPECT_EQ(view.last("status"),
                  QString("OBD Cmd: (192.168.0.10:35000) Timed out!! \\n    Retrying...%1/4").arg(n));
    }
    forget();
    found_out.ready = true;
    clock.advance(3000);
    EXPECT_EQ(heard(), "leave");
    EXPECT_EQ(view.events.join(", "),
              "beep: , status: No answer came five times in a row: the link is closed");
    EXPECT_FALSE(link.is_connected() || found_out.ready);
    clock.advance(499);
    EXPECT_EQ(view.events.size(), 2);
    clock.advance(1);
    EXPECT_EQ(view.last("message"), localised("DLG_4_TIMEOUTS_CHECK").replace('\n', "\\n"));
    EXPECT_EQ(clock.running(), 0u);
    open(); // and the next link counts from the start
    ask("AT I", "ELM");
    clock.advance(3000);
    EXPECT_TRUE(view.last("status").endsWith("1/4"));
}

TEST_F(exchange_of, late_replies_do_not_put_it_one_behind) {
    // Three tries of "01 0C"; all three answers come, late, and in between "01 0D" is asked for.
    const QString rpm = "410C1AF8\r\r>";
    ask("01 0C", "410C");
    clock.advance(6000);
    adapter->receive(rpm);
    EXPECT_EQ(heard(), "reply 410C1AF8");
    ask("01 0D", "410D");
    sent();
    adapter->receive(rpm.first(5));
    adapter->receive(rpm.sliced(5) + rpm + "410D3C\r\r>");
    EXPECT_EQ(heard(), "reply 410D3C");
    for (int n = 0; n < 3; ++n) { // back in step: an unconfirmed reply is asked for again
        ask("01 0C", "410C");
        adapter->receive("#>");
        clock.advance(100);
        adapter->receive(rpm);
        EXPECT_EQ(heard(), "reply 410C1AF8");
        EXPECT_EQ(sent(), "01 0C, 01 0C");
    }
    // The first answer was lost for good: waiting for it ends with the time-out.
    ask("01 0C", "410C");
    clock.advance(3000);
    adapter->receive(rpm);
    ask("01 0D", "410D");
    heard(), sent();
    adapter->receive("#>");
    EXPECT_EQ(sent(), "");
    clock.advance(3000);
    EXPECT_EQ(sent(), "01 0D");
    adapter->receive("410D3C>");
    EXPECT_EQ(heard(), "reply 410D3C");
}

// A set of one PID asks for the same again and again.
TEST_F(exchange_of, the_same_command_waits_for_the_reply_to_its_earlier_try) {
    for (const char* rest :
         {"410C0AF0>", "", "410C0AF0>410C0AF1>"}) { // comes, is lost, comes at once with one more
        ask("01 0C", "410C");
        clock.advance(6000);
        EXPECT_EQ(sent(), "01 0C, 01 0C, 01 0C");
        adapter->receive("410C1AF8>");
        EXPECT_EQ(heard(), "reply 410C1AF8");
        ask("01 0C", "410C");
        EXPECT_EQ(sent(), "");
        if (*rest == 0) {
            clock.advance(3000);
            EXPECT_EQ(sent(), "01 0C");
            adapter->receive("410C0AF0>");
        } else {
            adapter->receive(rest);
        }
        EXPECT_EQ(heard(), "reply 410C0AF0");
        adapter->receive("410C0AF1>");
        ask("01 0C", "410C");
        EXPECT_EQ(sent(), "01 0C"); // in step
        adapter->receive("410C0AF2>");
        EXPECT_EQ(heard(), "reply 410C0AF2");
    }
}

// The command asked for at the first reply is answered by the second, which came in the same read.
TEST_F(exchange_of, a_command_held_back_is_answered_by_what_came_at_once) {
    ask("01 0C", "410C");
    clock.advance(3000);
    sent();
    controller.on_reply = [this] { ask("01 0C", "410C"); };
    adapter->receive("410C1AF8>410C0AF0>410C");
    EXPECT_EQ(heard(), "reply 410C1AF8, reply 410C0AF0");
    EXPECT_EQ(sent(), "");
    EXPECT_EQ(clock.running(), 0u);
    ask("01 0C", "410C");
    EXPECT_EQ(sent(), "01 0C"); // in step
}

TEST_F(exchange_of, replies_are_dropped_when_nobody_waits) {
    ask("AT I", "ELM");
    link.l_leave_cur_op_gracefully("");
    EXPECT_EQ(heard(), "leave");
    EXPECT_EQ(clock.running(), 0u);
    adapter->receive("ELM>");
    EXPECT_EQ(heard(), "");
    ask("AT I", "ELM");
    recording_controller other(link, view);
    link.set_controller(&other); // another screen
    EXPECT_EQ(heard(), "leave");
    adapter->receive("ELM>");
    link.set_controller(nullptr); // a screen that talks to nobody
    ask("AT I", "ELM");
    adapter->receive("ELM>");
    EXPECT_EQ(other.heard.join(", "), "leave");
    link.set_controller(&controller);
    link.disconnect();
    adapter->receive("ELM>");
    EXPECT_EQ(heard(), "");
}

TEST_F(exchange_of, the_console_gets_every_reply_as_it_is) {
    found_out.ready = found_out.known = true;
    link.sendOBDcmd("AT RV\r");
    EXPECT_EQ(sent(), "AT RV");
    EXPECT_FALSE(found_out.ready || found_out.known); // it may have changed anything
    adapter->receive("UNABLE TO CONNECT\r\r>");
    adapter->receive("unasked\r\r>");
    EXPECT_EQ(heard(), "reply UNABLETOCONNECT, reply unasked");
    link.sendOBDcmd("ATI\r");
    clock.advance(3000);
    EXPECT_EQ(sent(), "ATI, ATI"); // the text last sent is what a time-out sends again
}

TEST_F(exchange_of, headers_are_known_to_be_shown) {
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"AT H1", "OK>", true}, {"AT I", "ELM>", true},  {"AT H0", "OK>", false},
        {"AT H1", "OK>", true}, {"AT Z", "ELM>", false}, {"AT H1", "?>?>", false},
    };
    for (const auto& [command, reply, shown] : rows) {
        ask(command, "OK|ELM");
        adapter->receive(reply);
        EXPECT_EQ(found_out.headers, shown) << command;
    }
}

} // namespace brivant
