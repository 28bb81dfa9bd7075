#include "tests/livedata/live_bench.h"

#include <gtest/gtest.h>

namespace brivant {

// Whole sampling runs: the commands sent, what the screen showed, the matrix and the stored lines, checked
// together.

namespace {

const QString folder = QStringLiteral(BV_TESTS "/livedata/conversations/");

QString played(const conversation& talk, delivery pace = delivery::whole) {
    live_bench bench;
    return play(talk, bench, pace);
}

} // namespace

TEST(live_conversations, happen_as_written_however_the_text_is_cut) {
    QStringList files = conversations_in(folder);
    const QStringList refusals = conversations_in(folder + "refusals");
    ASSERT_GT(files.size(), 7);
    ASSERT_GT(refusals.size(), 3);
    for (const QString& file : refusals)
        files += "refusals/" + file;
    for (const QString& file : files) {
        const conversation talk = conversation::load(folder + file);
        EXPECT_EQ(played(talk), "");
        EXPECT_EQ(played(talk, delivery::byte_by_byte), "") << "byte by byte";
    }
}

// A reply that cannot be used is asked for again, and no value gets into another column. Not behind a
// time-out or a stop: there what cannot be used is taken for the late reply to the command before.
TEST(live_conversations, survive_noise_at_every_command) {
    for (const char* file : {"log_run.txt", "fuel.txt", "boost.txt", "o2.txt", "kwp_log.txt"}) {
        conversation talk = conversation::load(folder + file);
        const auto late =
            std::find_if(talk.steps.begin(), talk.steps.end(), [](const conversation::step& step) {
                return step.kind == '!' && (step.text == "silence" || step.text == "do stop");
            });
        talk.steps.erase(late, talk.steps.end());
        for (const qsizetype command : talk.commands()) {
            if (!talk.reply_to(command).isEmpty()) {
                EXPECT_EQ(played(disturbed(talk, command, disturbance::noise)), "")
                    << "noise at " << talk.steps[command].where.toStdString();
            }
        }
    }
}

} // namespace brivant
