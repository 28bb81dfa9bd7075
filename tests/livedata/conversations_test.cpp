#include "tests/livedata/live_bench.h"

#include <gtest/gtest.h>

namespace brivant {

// Whole sampling runs: the commands sent, what the screen showed, the matrix and the stored lines, checked
// together.

namespace {

const QString folder = QStringLiteral(BV_TESTS "/livedata/conversations/");

} // namespace

TEST(live_conversations, happen_as_written_however_the_text_is_cut) {
    for (const auto& [place, least] : {std::pair("", 7), {"refusals/", 3}})
        expect_as_written<live_bench>(folder + place, least, {delivery::whole, delivery::byte_by_byte});
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
                live_bench bench;
                EXPECT_EQ(play(disturbed(talk, command, disturbance::noise), bench), "")
                    << "noise at " << talk.steps[command].where.toStdString();
            }
        }
    }
}

} // namespace brivant
