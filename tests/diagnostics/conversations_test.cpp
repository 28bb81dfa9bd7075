#include "base/string_table.h"
#include "tests/diagnostics/diagnostic_bench.h"

#include <gtest/gtest.h>

namespace brivant {

// Whole operations: the commands sent, what the screen showed, the rows and what was stored, checked
// together. The conversations stand in files; those that run to their end are played again with every kind of
// trouble that is mended on the way.

namespace {

const QString folder = QStringLiteral(BV_TESTS "/diagnostics/conversations/");

QString played(const conversation& talk) {
    diagnostic_bench bench;
    return play(talk, bench);
}

conversation the_usual_one() {
    return conversation::load(folder + "can11_two_ecus.txt");
}

// The voltage: whatever comes in its place is taken for it.
bool any_answer_will_do(const conversation& talk, qsizetype command) {
    const QList<qsizetype> commands = talk.commands();
    const qsizetype next = commands.value(commands.indexOf(command) + 1, command);
    return talk.steps[command].text == "AT RV" || talk.steps[next].text == "AT RV";
}

// The conversation up to the command; then the ending, after which nothing runs any more.
conversation cut(const conversation& talk, qsizetype command, const QString& ending) {
    conversation short_talk;
    short_talk.steps = talk.steps.first(command + 1);
    short_talk.steps += {'!', ending, ending};
    for (const char* fact : {"ended failed", "busy no", "timers 0"})
        short_talk.steps += {'=', fact, ending + " at " + talk.steps[command].where};
    return short_talk;
}

} // namespace

TEST(conversations, happen_as_written_however_the_text_is_cut) {
    for (const auto& [place, least] : {std::pair("", 20), {"refusals/", 15}})
        expect_as_written<diagnostic_bench>(folder + place, least, {delivery::whole, delivery::byte_by_byte});
}

// One command more, and the rest as before: the exchange is back in step at once.
TEST(conversations, survive_trouble_at_every_command) {
    const std::array<std::pair<disturbance, const char*>, 4> troubles{{
        {disturbance::time_out, "time-out"},
        {disturbance::late, "late reply"},
        {disturbance::late_glued, "late reply glued to the next"},
        {disturbance::noise, "noise"},
    }};
    for (const QString& file : conversations_in(folder)) {
        const conversation talk = conversation::load(folder + file);
        for (const qsizetype command : talk.commands()) {
            for (const auto& [trouble, name] : troubles) {
                if (trouble != disturbance::time_out && any_answer_will_do(talk, command))
                    continue;
                diagnostic_bench bench;
                EXPECT_EQ(play(disturbed(talk, command, trouble), bench), "")
                    << name << " at " << talk.steps[command].text.toStdString() << " of "
                    << file.toStdString();
            }
        }
    }
}

TEST(conversations, end_quietly_when_the_person_stops) {
    for (const QString& file : conversations_in(folder)) {
        const conversation talk = conversation::load(folder + file);
        for (const qsizetype command : talk.commands()) {
            diagnostic_bench bench;
            conversation short_talk = cut(talk, command, "do stop");
            short_talk.steps += talk.reply_to(command); // still comes
            EXPECT_EQ(play(short_talk, bench), "");
            EXPECT_FALSE(bench.controller.is_running());
            EXPECT_EQ(bench.view.last("status"), "Stopped");
        }
    }
}

// Whatever was stored can be shown, and the same controller starts again from the reset.
TEST(conversations, begin_anew_after_the_link_was_lost_at_any_command) {
    for (const QString& file : conversations_in(folder)) {
        const conversation talk = conversation::load(folder + file);
        for (const qsizetype command : talk.commands()) {
            diagnostic_bench bench;
            if (talk.steps[command].text == "AT Z")
                continue; // there it is the adapter's nature, and mended
            bench.profile.defaults.set(setting::log_runs, true);
            EXPECT_EQ(play(cut(talk, command, "close"), bench), "");
            EXPECT_FALSE(bench.controller.is_running());
            EXPECT_EQ(bench.view.last("status"), "Disconnected");
            EXPECT_EQ(bench.logs_without_text(), 0) << talk.steps[command].where.toStdString();
            bench.forget();
            EXPECT_EQ(play(talk, bench), "")
                << "after the loss at " << talk.steps[command].where.toStdString();
        }
    }
}

TEST(conversations, end_at_the_fifth_time_out_and_tell_why) {
    for (const QString& file : conversations_in(folder)) {
        const conversation talk = conversation::load(folder + file);
        diagnostic_bench bench;
        conversation silent;
        silent.steps = talk.steps.first(talk.commands().last() + 1);
        const conversation::step sent = silent.steps.last();
        for (int times = 0; times < 4; ++times)
            silent.steps += {{'!', "silence", sent.where}, sent};
        silent.steps += {{'!', "silence", sent.where}, {'=', "ended failed", sent.where}};
        silent.steps += {{'=', "link closed", sent.where}, {'!', "wait 500", sent.where}};
        silent.steps +=
            {{'=', "shown message: {DLG_4_TIMEOUTS_CHECK}", sent.where}, {'=', "timers 0", sent.where}};
        EXPECT_EQ(play(silent, bench), "");
    }
}

// A command that is never confirmed is sent four times; what its step makes of "~".
TEST(conversations, give_up_at_every_command) {
    const QString no_pids = "message: The adapter answers, but the car does not: it did not say";
    const QList<std::array<QString, 3>> rows{
        // given up     sent next   shown
        {"AT Z", "AT E0", ""},
        {"AT E0", "AT I", ""},
        {"AT I", "AT DP", ""},
        {"AT DP", "AT SP A3", ""},
        {"AT H1", "AT DPN", "status: AT H1 not supported by current chip"},
        {"AT DPN", "01 00", ""},
        {"01 00", "", no_pids},
        {"AT DPN", "", "message: The adapter does not tell the protocol"},
        {"01 00", "", no_pids},
        {"01 20", "", "message: Failed to receive available PIDs "},
        {"AT H1", "", "message: " + localised("DLG_TIMEDOUT_RETRY") + " | Timed out .. Try again"},
        {"01 01", "03", "status: Initial  reply: [~]"},
        {"03", "", "status: Failed to receive the error codes"},
    };
    const conversation talk = the_usual_one();
    const QList<qsizetype> commands = talk.commands();
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const auto& [given_up, next, shown] = rows[i];
        diagnostic_bench bench;
        conversation refused;
        refused.steps = talk.steps.first(commands[i] + 1);
        const conversation::step sent = refused.steps.last();
        for (int times = 0; times < 3; ++times)
            refused.steps += {{'<', "#", sent.where}, sent};
        refused.steps += {'<', "#", sent.where};
        refused.steps += {'=', "shown message: ", sent.where};
        if (!next.isEmpty())
            refused.steps += {'>', next, sent.where};
        if (!shown.isEmpty())
            refused.steps += {'=', "shown " + shown, sent.where};
        refused.steps += {'=', next.isEmpty() ? "ended failed" : "ended no", sent.where};
        EXPECT_EQ(sent.text.section(" |", 0, 0), given_up);
        EXPECT_EQ(play(refused, bench), "");
    }
}

TEST(conversations, an_answer_after_the_screen_went_clears_nothing) {
    adapter_bench bench;
    diagnostic_results results;
    {
        readCodes screen_before(bench.state, bench.link, bench.toolies, bench.view, results,
                                bench.profile.paths);
        screen_before.clearCodes();
    }
    bench.view.answer(true);
    EXPECT_TRUE(bench.written.isEmpty());
    EXPECT_EQ(bench.adapter, nullptr); // not even the link was opened
}

TEST(conversations, the_player_finds_what_differs) {
    const conversation talk = the_usual_one();
    const qsizetype first = talk.commands().first();
    const auto changed = [&](QChar kind, const QString& text) {
        conversation other = talk;
        other.steps[first] = {kind, text, "here"};
        return played(other);
    };
    EXPECT_EQ(changed('>', "AT X"), "here: expected AT X, sent AT Z");
    EXPECT_TRUE(changed('=', "codes P0001").startsWith("here: codes is "));
    EXPECT_TRUE(changed('=', "shown status: nothing like it").startsWith("here: not shown"));
    conversation early = talk;
    early.steps = early.steps.first(first);
    EXPECT_TRUE(played(early).contains("sent as well: AT Z"));
}

} // namespace brivant
