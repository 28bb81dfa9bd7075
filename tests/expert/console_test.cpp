#include "base/string_table.h"
#include "expert/expertCtrlr.h"
#include "tests/support/adapter_bench.h"
#include "tests/support/conversation.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct console_bench : adapter_bench {
    expert_session session{profile.defaults};
    expertCtrlr controller{state, link, toolies, view, profile.defaults, session};
    QString ended = "no";

    console_bench() {
        link.set_controller(&controller);
        controller.load();
        controller.operation_ended = [this](bool done) { ended = done ? "done" : "left"; };
        actions["load"] = [this](const QString&) { controller.load(); };
        actions["stop"] = [this](const QString&) { controller.stop(); };
        actions["send"] = [this](const QString& typed) {
            ended = "no";
            controller.handle_a_send(typed);
        };
        actions["script"] = [this](const QString& values) { script(values.split(", ")); };
        actions["initialised"] = [this](const QString&) { found_out.ready = true; };
        facts["ended"] = [this] { return ended; };
        facts["transcript"] = [this] { return shown().chopped(1).replace('\n', " / "); };
    }
    // Up to the first command: the link is given its time.
    void script(const QStringList& values) {
        ended = "no";
        controller.start_script(values);
        clock.advance(800);
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

TEST(console, happens_as_written) {
    expect_as_written<console_bench>(QStringLiteral(BV_TESTS "/expert/conversations/"), 7);
}

TEST(console, shows_an_answer_of_any_length) {
    console_bench bench;
    bench.controller.handle_a_send("AT MA");
    bench.clock.advance(800);
    for (int line = 0; line < 1000; ++line) { // 40 s, and more than is ever decoded
        bench.adapter->receive("7E8 03 41 0D 3C 00 00 00 00 \r");
        bench.clock.advance(40);
    }
    EXPECT_EQ(bench.session.lines.end(), 1001);
    bench.clock.advance(50'000);
    EXPECT_TRUE(bench.controller.is_running()) << "the bus may be quiet for a while";
    EXPECT_EQ(bench.written.join(' '), "AT MA");
    bench.controller.stop();
    bench.adapter->receive("STOPPED\r\r>");
    EXPECT_EQ(bench.ended, "done");
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
        bench.script({"01{L}", row.from, row.to, row.loops});
        EXPECT_EQ(bench.view.events.contains("status: Starting Expert script mode"), true);
        EXPECT_EQ(bench.sent_to_the_end(), row.sent);
        EXPECT_EQ(bench.controller.commands_answered(), bench.controller.commands_in_all());
        EXPECT_EQ(bench.view.last("status"), "Current Script completed");
        EXPECT_EQ(bench.ended, "done");
        EXPECT_EQ(bench.shown().count("> 01"), bench.written.size());
        EXPECT_TRUE(bench.shown().startsWith("> " + bench.written.first() + "\n41\n"));
    }
}

TEST(script, answers_inside_the_send_neither_pile_up_nor_keep_the_event_loop) {
    adapter_bench bench;
    bench.place.choose(interface_simulated);
    adapter_link link{bench.place, bench.found_out, bench.clock, bench.view, make_transport};
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

} // namespace brivant
