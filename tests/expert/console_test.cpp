#include "base/string_table.h"
#include "expert/expertCtrlr.h"
#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace {

struct console_bench : adapter_bench {
    expert_session session{profile.defaults};
    expertCtrlr controller{state, link, toolies, view, profile.defaults, session};
    QString ended = "no";

    console_bench() {
        link.set_controller(&controller);
        controller.load();
        controller.operation_ended = [this](bool done) { ended = done ? "done" : "left"; };
    }
    // Up to the first command: the link is given its time.
    void connect() { clock.advance(800); }
    void script(const QString& text, const QString& from, const QString& to, const QString& loops) {
        controller.start_script({text, from, to, loops});
        connect();
    }
    // Answers every command with "41" until nothing is asked any more.
    QString sent_to_the_end() {
        for (int i = 0; i < 1000 && controller.is_running(); ++i)
            adapter->receive("41\r>");
        return written.join(' ');
    }
    QString shown() { return session.lines.as_text(); }
};

} // namespace

TEST(console, sends_what_is_typed_and_shows_every_answer) {
    console_bench bench;
    bench.controller.load();
    bench.controller.handle_a_send("  01 00 ");
    EXPECT_EQ(bench.shown(), "> 01 00\n");
    bench.connect();
    EXPECT_EQ(bench.written, QStringList("01 00"));
    bench.controller.handle_a_send("AT RV");
    EXPECT_EQ(bench.written.size(), 1) << "one command waits for its answer at a time";

    bench.clock.advance(2999);
    EXPECT_EQ(bench.written.size(), 1);
    bench.clock.advance(1);
    EXPECT_EQ(bench.written, QStringList({"01 00", "01 00"})) << "after three seconds, not the twelve before";
    bench.adapter->receive("7E8 06 41 00\r7E9 06");
    bench.adapter->receive(" 41 00\r\r>?\r\r>");
    EXPECT_EQ(bench.shown(), "> 01 00\n7E8064100\n7E9064100\n");
    bench.clock.advance(3000);
    EXPECT_EQ(bench.ended, "done");
    EXPECT_FALSE(bench.view.is_busy);
    EXPECT_EQ(bench.clock.running(), 0u);

    // Nothing is checked: what no other screen would take is an answer here.
    bench.state.adapter_ready = true;
    bench.controller.handle_a_send("AT ZZ");
    bench.adapter->receive("?\r\r>");
    EXPECT_EQ(bench.ended, "done");
    EXPECT_TRUE(bench.shown().endsWith("> AT ZZ\n?\n"));
    EXPECT_FALSE(bench.state.adapter_ready) << "the next reading begins with a reset";

    bench.controller.load(); // from another screen, whose last answer is still on its way
    bench.adapter->receive("7E8 03 41 0D 3C\r\r>");
    EXPECT_TRUE(bench.shown().endsWith("> AT ZZ\n?\n"));
}

TEST(console, a_late_answer_stands_under_its_own_command) {
    console_bench bench;
    bench.controller.handle_a_send("01 0C");
    bench.connect();
    bench.clock.advance(3000);
    bench.adapter->receive("41 0C 1A F8\r\r>");
    bench.controller.handle_a_send("01 05");
    EXPECT_EQ(bench.written.size(), 2) << "the answer to the second try is on its way";
    bench.adapter->receive("41 0C 1A F9\r\r>");
    EXPECT_EQ(bench.ended, "done");
    bench.controller.handle_a_send("01 05");
    bench.controller.stop(); // and its answer still comes
    bench.controller.handle_a_send("01 0D");
    bench.adapter->receive("41 05 7B\r\r>");
    EXPECT_TRUE(bench.controller.is_running());
    bench.adapter->receive("41 0D 3C\r\r>");
    EXPECT_FALSE(bench.controller.is_running());
    EXPECT_EQ(bench.shown(), "> 01 0C\n410C1AF8\n410C1AF9\n> 01 05\n> 01 0D\n41057B\n410D3C\n");
}

TEST(console, refuses_what_cannot_be_sent) {
    console_bench bench;
    for (const QString& typed : {QString(""), QString(" \t "), QString("01 00\r04"), QString("01\u00A000"),
                                 QString(QChar(0)) + "04", QString(251, '0')}) {
        bench.view.events.clear();
        bench.controller.handle_a_send(typed);
        EXPECT_FALSE(bench.view.last("message").isEmpty()) << typed.toStdString();
    }
    bench.controller.handle_a_send("");
    EXPECT_EQ(bench.view.last("message"), "Missing - " + localised("blank_input_MSG"));
    EXPECT_EQ(bench.link.is_connected(), false);
    EXPECT_EQ(bench.shown(), "");
}

TEST(console, ends_when_nothing_answers_and_when_told_to) {
    console_bench bench;
    bench.controller.handle_a_send("01 00");
    bench.connect();
    bench.clock.advance(5 * 3000);
    EXPECT_EQ(bench.written, QStringList(5, "01 00"));
    EXPECT_EQ(bench.ended, "left");
    EXPECT_FALSE(bench.link.is_connected());

    console_bench stopped;
    stopped.script("01 {L}", "00", "FF", "1");
    stopped.adapter->receive("41\r>");
    stopped.controller.stop();
    EXPECT_EQ(stopped.ended, "left");
    EXPECT_FALSE(stopped.controller.is_script_running());
    stopped.adapter->receive("LATE\r>");
    EXPECT_TRUE(stopped.shown().endsWith("LATE\n")) << stopped.shown().toStdString();
    EXPECT_EQ(stopped.written.join(' '), "01 00 01 01") << "a late answer does not wake the script";
    stopped.controller.handle_a_send("AT RV");
    stopped.adapter->receive("Timeout\r>");
    EXPECT_EQ(stopped.view.last("status"), "Cur op timed out... Please Check/retry");
    EXPECT_FALSE(stopped.controller.is_running());
}

TEST(script, passes) {
    const struct {
        const char *from, *to, *loops, *sent;
    } rows[] = {
        {"0E", "11", "1", "010E 010F 0110 0111"}, {"e", "F", "3", "010E 010F 010E 010F 010E 010F"},
        {"FE", "FF", "2", "01FE 01FF 01FE 01FF"}, {"05", "05", "2", "0105 0105"},
        {"0C", "01", "2", "010C 010C"}, // From above To: one command a pass
    };
    for (const auto& row : rows) {
        console_bench bench;
        bench.script("01{L}", row.from, row.to, row.loops);
        EXPECT_EQ(bench.view.events.contains("status: Starting Expert script mode"), true);
        EXPECT_EQ(bench.sent_to_the_end(), row.sent);
        EXPECT_EQ(bench.controller.commands_answered(), bench.controller.commands_in_all());
        EXPECT_EQ(bench.view.last("status"), "Current Script completed");
        EXPECT_EQ(bench.ended, "done");
        EXPECT_EQ(bench.shown().count("> 01"), bench.written.size());
        EXPECT_TRUE(bench.shown().startsWith("> " + bench.written.first() + "\n41\n"));
    }
}

TEST(script, sends_the_same_again_after_a_time_out) {
    console_bench bench;
    bench.script("AT {L}{L}", "01", "02", "1");
    bench.clock.advance(3000);
    EXPECT_EQ(bench.sent_to_the_end(), "AT 0101 AT 0101 AT 0202");
    EXPECT_EQ(bench.shown(), "> AT 0101\n41\n41\n> AT 0202\n41\n") << "each answer under its command";

    console_bench lost; // the answer to the first try never comes
    lost.script("AT {L}{L}", "01", "03", "1");
    lost.clock.advance(3000);
    lost.adapter->receive("41\r>");
    EXPECT_EQ(lost.written.size(), 2);
    lost.clock.advance(3000);
    EXPECT_EQ(lost.sent_to_the_end(), "AT 0101 AT 0101 AT 0202 AT 0303");
}

TEST(script, stops_when_the_car_is_out_of_reach) {
    const char* out_of_reach[] = {"UNABLE TO CONNECT\r\r>", "BUS INIT: ...ERROR\r\r>"};
    for (const char* words : out_of_reach) {
        console_bench bench;
        bench.script("01 {L}", "01", "05", "1");
        bench.adapter->receive(words);
        EXPECT_EQ(bench.written.size(), 1);
        EXPECT_EQ(bench.ended, "left");
        EXPECT_FALSE(bench.view.last("message").isEmpty()) << words;
    }
    console_bench bench;
    bench.script("01 {L}", "01", "02", "1");
    bench.adapter->receive("BUS INIT: OK\r41 01\r>");
    EXPECT_EQ(bench.written.size(), 2) << "neither word alone is a failure";
}

TEST(script, answers_inside_the_send_neither_pile_up_nor_keep_the_event_loop) {
    adapter_bench bench;
    bench.place.choose(interface_simulated);
    adapter_link link{bench.place, bench.state, bench.clock, bench.view, make_transport};
    expert_session session{bench.profile.defaults};
    expertCtrlr controller(bench.state, link, bench.toolies, bench.view, bench.profile.defaults, session);
    link.set_controller(&controller);
    controller.load();
    controller.start_script({"AT {L}", "00", "02", "1"});
    EXPECT_EQ(session.lines.as_text(), "> AT 00\n?\n") << "the next step waits for its turn";
    bench.clock.advance(0);
    EXPECT_EQ(session.lines.as_text(), "> AT 00\n?\n> AT 01\n?\n> AT 02\n?\n");
    EXPECT_FALSE(controller.is_running());

    controller.start_script({"AT {L}", "00", "FF", "9999"});
    controller.stop();
    bench.clock.advance(1000);
    EXPECT_TRUE(session.lines.as_text().endsWith("> AT 00\n?\n"));
}

TEST(script, values_are_checked_in_their_fields) {
    const struct {
        QStringList values;
        const char* wrong; // one mark a field
    } rows[] = {
        {{"01 {L}", "01", "05", "1"}, "----"},
        {{"0123456789ABCDEF{L}1", "00", "FF", "9999"}, "----"}, // 19 characters and the "\r"
        {{"0123456789ABCDEF{L}12", "00", "00", "1"}, "x---"},
        {{"{L}{L}{L}{L}{L}{L}{L}{L}{L}{L}", "00", "00", "1"}, "x---"},
        {{" ", "", "100", "0"}, "xxxx"},
        {{"01\r{L}", "0x1", "-1", "10000"}, "xxxx"},
        {{"01 {L}", "G", "1 2", "1.5"}, "-xxx"},
        {{}, "xxxx"},
        {{QString(100000, 'A'), QString(100000, '1'), "01", QString(100000, '1')}, "xx-x"},
    };
    for (const auto& row : rows) {
        QStringList problems;
        const bool good = check_script(row.values, problems).has_value();
        QString marks;
        for (const QString& problem : problems)
            marks += problem.isEmpty() ? '-' : 'x';
        EXPECT_EQ(marks, row.wrong) << row.values.join('|').left(60).toStdString();
        EXPECT_EQ(good, marks == "----");
    }

    console_bench bench;
    EXPECT_EQ(stored_script(bench.profile.defaults).join('|'), "01 {L}|01|05|1");
    bench.controller.start_script({"01 {L}", "01", "XX", "1"});
    EXPECT_FALSE(bench.controller.is_running());
    EXPECT_EQ(stored_script(bench.profile.defaults).join('|'), "01 {L}|01|05|1");
    bench.controller.start_script({"22 10 {L}", "0A", "0B", "2"});
    EXPECT_EQ(stored_script(bench.profile.defaults).join('|'), "22 10 {L}|0A|0B|2");
    bench.profile.defaults.set(setting::expert_script, QStringList({"01 {L}", "01"}));
    EXPECT_EQ(stored_script(bench.profile.defaults).join('|'), "01 {L}|01|05|1") << "a damaged one is left";
}

TEST(warning, comes_for_changes_that_stay) {
    for (const char* command :
         {"04", " 0 4 ", "04 1", "at pp 0c sv 01", "A T P P FF ON", "ATBRD10", "aT bRd 23"})
        EXPECT_FALSE(permanent_change(command).isEmpty()) << command;
    for (const char* command : {"01 04", "AT PPS", "AT BRT 0F", "AT SP 4", "4", "AT I", "14 04", ""})
        EXPECT_TRUE(permanent_change(command).isEmpty()) << command;
}

TEST(warning, is_asked_until_it_was_agreed_to_once) {
    console_bench bench;
    bench.controller.handle_a_send("01 00");
    EXPECT_FALSE(bench.view.question);
    bench.connect();
    bench.adapter->receive("41 00\r>");

    bench.controller.handle_a_send("0 4");
    EXPECT_FALSE(bench.controller.is_running());
    bench.ended = "no";
    bench.view.answer(false);
    EXPECT_EQ(bench.ended, "left");
    EXPECT_EQ(bench.written.size(), 1);
    EXPECT_FALSE(bench.shown().contains("0 4"));

    bench.script("{L}", "01", "05", "1"); // sends 04 on its way
    EXPECT_TRUE(bench.view.last("question").contains("04 clears"));
    bench.view.answer(true);
    EXPECT_EQ(bench.sent_to_the_end(), "01 00 01 02 03 04 05");

    bench.controller.handle_a_send("AT PP 0C SV 01");
    EXPECT_FALSE(bench.view.question);
    EXPECT_EQ(bench.written.last(), "AT PP 0C SV 01");
}

TEST(warning, an_answer_after_the_screen_was_left_does_nothing) {
    adapter_bench bench;
    expert_session session{bench.profile.defaults};
    {
        expertCtrlr controller(bench.state, bench.link, bench.toolies, bench.view, bench.profile.defaults,
                               session);
        bench.link.set_controller(&controller);
        controller.load();
        controller.handle_a_send("04");
    }
    bench.view.answer(true);
    bench.clock.advance(5000);
    EXPECT_TRUE(bench.written.isEmpty());
    EXPECT_FALSE(session.warned);
}

TEST(transcript, is_bounded_and_holds_nothing_that_acts) {
    transcript lines;
    lines.add_command("AT I");
    lines.add_reply(QString::fromLatin1("A\033[2J\0B\rC\r\nD", 12) + QString(3000, 'x'));
    EXPECT_EQ(lines.end(), 6);
    EXPECT_EQ(lines.at(1).text, QString("A\uFFFD[2J\uFFFDB"));
    EXPECT_EQ(lines.at(2).text, "C");
    for (qint64 i = 0; i < lines.end(); ++i)
        EXPECT_LE(lines.at(i).text.size(), transcript::longest_line);
    for (qint64 i = lines.end(); i < transcript::most_lines + 7; ++i)
        lines.add_reply(QString::number(i));
    EXPECT_EQ(lines.first(), 7);
    EXPECT_EQ(lines.end(), transcript::most_lines + 7);
    EXPECT_EQ(lines.at(lines.first()).text, "7");
    lines.clear();
    EXPECT_TRUE(lines.is_empty());
    EXPECT_EQ(lines.first(), transcript::most_lines + 7);
}

TEST(history, goes_back_and_forth_and_survives_a_start) {
    temporary_profile profile;
    {
        command_history history(profile.defaults);
        EXPECT_EQ(history.older("half"), "half");
        for (const char* command : {"AT Z", "01 00", "AT I", "01 00"})
            history.add(command);
        EXPECT_EQ(history.older("half"), "01 00");
        EXPECT_EQ(history.older("01 00"), "AT I");
        EXPECT_EQ(history.newer("AT I"), "01 00");
        EXPECT_EQ(history.newer("01 00"), "half");
        EXPECT_EQ(history.newer("half"), "half");
        for (int i = 0; i < 150; ++i)
            history.add(QString::number(1000 + i));
    }
    command_history history(profile.defaults);
    QString shown = "";
    int steps = 0;
    for (QString next = history.older(shown); next != shown; next = history.older(shown)) {
        shown = next;
        ++steps;
    }
    EXPECT_EQ(steps, command_history::most_commands);
    EXPECT_EQ(shown, "1050");
}
