#include "tools/virtual_adapter/adapter_session.h"
#include "tools/virtual_adapter/car_file.h"
#include "tools/virtual_adapter/timed_adapter.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace virtual_adapter;

namespace {

// Round numbers: a byte takes 1 ms, so that every moment can be added up by hand.
timing plain() {
    return {.ecu_ms = {10, 13}, .frame_gap_ms = 1, .line_ms = 0, .baud = 10000};
}

const std::string one_ecu = "protocol 6\necu 7E8\npid 05 7B\npid 0C 1A F8\npid 21 00 00\n";
const std::string two_ecus = one_ecu + "ecu 7E9\npid 0C 1A F9\n";

struct bench {
    timed_adapter adapter;
    double now_ms = 0;

    bench(const std::string& text, const timing& takes, const std::vector<const char*>& settings = {},
          const clone_faults& what = {})
        : adapter(car_of(text), options_of(text, takes), what) {
        ask("ATE0");
        ask("ATS0");
        ask("ATAT0");
        ask("0100"); // wakes the bus up
        for (const char* setting : settings)
            ask(setting);
    }

    static std::shared_ptr<car> car_of(const std::string& text) {
        std::string problem;
        const auto made = parse_car(text, problem);
        EXPECT_TRUE(made) << problem;
        return std::make_shared<car>(*made);
    }
    static adapter_options options_of(const std::string& text, const timing& takes) {
        return {.stored_protocol = text[9] - '0', .stored_automatic = false, .time = takes};
    }

    // The reply to a command that is sent at the moment at which the last one's prompt came; `took_ms` from
    // there to the prompt.
    std::string ask(const std::string& command) {
        std::string reply;
        const double began_ms = now_ms;
        for (const timed_text& piece : adapter.send(command + '\r', began_ms)) {
            EXPECT_GE(piece.at_ms, now_ms);
            now_ms = piece.at_ms;
            reply += piece.text;
        }
        took_ms = now_ms - began_ms;
        return reply;
    }
    double took_ms = 0;
};

constexpr double frame_ms = 111.0 / 500;
constexpr double usual_wait_ms = 0x32 * 4.096;

} // namespace

// In each row what is between the client's first byte and its prompt.
TEST(timing, every_part_of_a_request_takes_its_time) {
    timing far = plain();
    far.round_trip_ms = 40;
    timing fast = plain();
    fast.baud = 2'000'000;
    struct {
        const char* name;
        const std::string& car;
        timing takes;
        std::vector<const char*> settings;
        const char* request;
        const char* reply;
        double ms;
    } const rows[] = {
        // command in (5 or 6 bytes), 1 ms, request, 10 ms, answer, line and prompt out
        {"count digit", one_ecu, plain(), {}, "01051", "41057B\r\r>", 6 + 1 + frame_ms + 10 + frame_ms + 9},
        {"time-out",
         one_ecu,
         plain(),
         {},
         "0105",
         "41057B\r\r>",
         5 + 1 + frame_ms + 10 + frame_ms + usual_wait_ms + 2},
        {"shorter",
         one_ecu,
         plain(),
         {"ATST04"},
         "0105",
         "41057B\r\r>",
         5 + 1 + frame_ms + 10 + frame_ms + 4 * 4.096 + 2},
        {"ST 00 is the usual one",
         one_ecu,
         plain(),
         {"ATST04", "ATST00"},
         "0111",
         "NO DATA\r\r>",
         5 + 1 + frame_ms + usual_wait_ms + 10},
        {"too short",
         one_ecu,
         plain(),
         {"ATST02"},
         "0105",
         "NO DATA\r\r>",
         5 + 1 + frame_ms + 2 * 4.096 + 10},
        {"second ECU is slower",
         two_ecus,
         plain(),
         {},
         "010C2",
         "410C1AF8\r410C1AF9\r\r>",
         6 + 1 + frame_ms + 10 + frame_ms + 20},
        {"one ECU of two",
         two_ecus,
         plain(),
         {"ATSH7E1"},
         "010C1",
         "410C1AF9\r\r>",
         6 + 1 + frame_ms + 13 + frame_ms + 11},
        {"two frames",
         one_ecu,
         plain(),
         {},
         "0121050C2",
         "009\r0:41210000057B\r1:0C1AF800000000\r\r>",
         10 + 1 + frame_ms + 10 + frame_ms + 19 + 19},
        {"radio", one_ecu, far, {}, "01051", "41057B\r\r>", 40 + 6 + 1 + frame_ms + 10 + frame_ms + 9},
        {"2,000,000 baud",
         one_ecu,
         fast,
         {},
         "01051",
         "41057B\r\r>",
         0.03 + 1 + frame_ms + 10 + frame_ms + 0.045},
        {"setting", one_ecu, plain(), {}, "ATE0", "OK\r\r>", 5 + 1 + 5},
    };
    for (const auto& row : rows) {
        bench b(row.car, row.takes, row.settings);
        b.now_ms += 100;
        EXPECT_EQ(b.ask(row.request), row.reply) << row.name;
        EXPECT_NEAR(b.took_ms, row.ms, 1e-6) << row.name;
    }
}

TEST(timing, a_k_line_rests_between_answer_and_request) {
    bench b("protocol 5\necu 10\npid 05 7B\npid 0C 1A F8\n", plain());
    b.now_ms += 1000;
    constexpr double byte_ms = 10 / 10.4;
    constexpr double request_ms = 6 * byte_ms + 5 * 5; // P4 between the bytes
    constexpr double answer_ms = 25 + 7 * byte_ms;     // P2 before it
    b.ask("01051");
    EXPECT_NEAR(b.took_ms, 6 + 1 + request_ms + answer_ms + 9, 1e-6);
    b.ask("01051"); // P3 counts from the last answer
    EXPECT_NEAR(b.took_ms, 55 - 9 + request_ms + answer_ms + 9, 1e-6);
}

// What each adaptive mode waits behind the last answer after answers of 10 ms and of 60 ms.
TEST(timing, adaptive_waits_follow_the_answers) {
    struct {
        const char* mode;
        double ecu_ms;
        double wait_ms;
    } const rows[] = {{"ATAT0", 10, usual_wait_ms},
                      {"ATAT1", 10, 32},
                      {"ATAT2", 10, (10 + frame_ms) * 1.25 + 4},
                      {"ATAT1", 60, 2 * (60 + frame_ms)},
                      {"ATAT2", 60, (60 + frame_ms) * 1.25 + 4}};
    for (const auto& row : rows) {
        timing takes = plain();
        takes.ecu_ms = {row.ecu_ms};
        bench b(one_ecu, takes, {row.mode});
        b.ask("0105");
        EXPECT_NEAR(b.took_ms, 5 + 1 + frame_ms + row.ecu_ms + frame_ms + std::max(row.wait_ms, 7.0) + 2,
                    1e-6)
            << row.mode << ' ' << row.ecu_ms;
        b.ask("0111"); // nobody answers: what was learnt is doubted
        b.ask("0105");
        EXPECT_NEAR(b.took_ms, 5 + 1 + frame_ms + row.ecu_ms + frame_ms + usual_wait_ms + 2, 1e-6);
        b.ask("ATST04"); // no longer than that
        b.ask("0111");
        EXPECT_NEAR(b.took_ms, 5 + 1 + frame_ms + 4 * 4.096 + 10, 1e-6);
    }
}

TEST(timing, a_clone_says_ok_and_waits_as_before) {
    clone_faults what;
    for (const char* name : {"ignore-st", "ignore-at2"})
        ASSERT_TRUE(what.add(name));
    bench b(one_ecu, plain(), {"ATAT1", "ATAT2", "ATST04"}, what);
    b.ask("0111");
    EXPECT_NEAR(b.took_ms, 5 + 1 + frame_ms + 32 + 10, 1e-6);
    b.ask("0111");
    EXPECT_NEAR(b.took_ms, 5 + 1 + frame_ms + usual_wait_ms + 10, 1e-6);
}

TEST(timing, an_answer_too_late_comes_with_the_next_or_is_lost) {
    timing takes = plain();
    takes.baud = 1'000'000;
    takes.ecu_ms = {10, 20};
    bench b(two_ecus, takes, {"ATH1"});
    EXPECT_EQ(b.ask("010C1"), "7E804410C1AF8\r\r>");
    EXPECT_EQ(b.ask("01051"), "7E904410C1AF9\r\r>"); // the other ECU's, of the request before
    EXPECT_EQ(b.ask("0105"), "7E80341057B\r7E80341057B\r\r>");
    EXPECT_EQ(b.ask("010C1"), "7E804410C1AF8\r\r>");
    b.now_ms += 15;
    EXPECT_EQ(b.ask("01051"), "7E80341057B\r\r>");
    EXPECT_EQ(b.ask("0121050C1"), "7E8100941210000057B\r\r>");
    EXPECT_EQ(b.ask("01051"), "7E8210C1AF800000000\r\r>");
}

TEST(timing, spread_and_jitter_stay_within_their_bounds) {
    timing takes = plain();
    takes.ecu_spread_ms = 6;
    takes.jitter_ms = 8;
    takes.round_trip_ms = 20;
    bench b(one_ecu, takes);
    constexpr double least = 20 + 6 + 1 + frame_ms + 10 + frame_ms + 9;
    double smallest = 1e9, largest = 0, sum = 0;
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(b.ask("01051"), "41057B\r\r>");
        smallest = std::min(smallest, b.took_ms);
        largest = std::max(largest, b.took_ms);
        sum += b.took_ms;
    }
    EXPECT_GE(smallest, least);
    EXPECT_LE(largest, least + 14);
    EXPECT_GT(largest - smallest, 10);
    EXPECT_NEAR(sum / 500, least + 7, 0.5);
}

// A command is sent as one, however often the clock moves on while it is read.
TEST(timing, a_session_keeps_the_computed_moments) {
    timing takes = plain();
    takes.ecu_spread_ms = 6;
    takes.round_trip_ms = 20;
    takes.jitter_ms = 30;
    const auto on = bench::car_of(one_ecu);
    const adapter_options options = bench::options_of(one_ecu, takes);
    timed_adapter computed(on, options);
    double clock_ms = 0;
    double due_ms = -1;
    double prompt_ms = -1;
    const auto now = [&] { return clock_ms += 0.001; };
    adapter_session session(on, options, {}, nullptr,
                            {[&](std::string_view text) {
                                 if (text.ends_with('>'))
                                     prompt_ms = clock_ms;
                             },
                             nullptr, [&] { due_ms = -1; }, nullptr, now,
                             [&](double moment_ms) { due_ms = moment_ms; }});
    for (int i = 0; i < 50; ++i) {
        prompt_ms = -1;
        const double sent_ms = clock_ms;
        session.take("01051\r");
        while (prompt_ms < 0 && due_ms > clock_ms) {
            clock_ms = due_ms;
            session.waited();
        }
        EXPECT_NEAR(prompt_ms, computed.send("01051\r", sent_ms).back().at_ms, 0.2);
    }
}
