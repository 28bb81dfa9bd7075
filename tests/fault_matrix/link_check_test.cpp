#include "livedata/elm_commands.h"
#include "livedata/link_check.h"
#include "tests/fault_matrix/matrix_bench.h"
#include "tools/virtual_adapter/kinds.h"

#include <gtest/gtest.h>

namespace brivant {

// What the adapter check tells of each kind of adapter, of each fault of cheap copies, and of adapters that
// do not bear it.

namespace {

using grade = check_row::grade;

// A car whose engine has thirty results of one monitor: an answer of 271 bytes.
in_process_adapter::car_pointer talkative_car(bool ignition = true) {
    virtual_adapter::car_description description = steady_car("can11")->description();
    description.ignition = ignition;
    description.ecus.front().monitors[0x21].assign(30, {.test_id = 1, .unit_and_scaling = 1});
    auto made = std::make_shared<virtual_adapter::car>(std::move(description));
    made->set_clock([] { return virtual_adapter::steady_moment_s; });
    return made;
}

struct checked : matrix_bench {
    explicit checked(const char* kind, const virtual_adapter::faults& faults = {},
                     const in_process_adapter::car_pointer& its_car = talkative_car())
        : matrix_bench(its_car) {
        step_ms = 1;
        adapter->options = *virtual_adapter::adapter_of_kind(kind);
        adapter->faults = faults;
    }
    explicit checked(const std::string& clone_fault, const char* kind = "elm327-v1.4") : checked(kind) {
        EXPECT_TRUE(adapter->faults.clone.add(clone_fault)) << clone_fault;
    }
    // To its end, or until `enough`.
    void run(const std::function<bool()>& enough = [] { return false; }) {
        begin(checking);
        checking.start();
        pump_until([&] { return !is_running() || enough(); });
    }
    std::string verdict() const { return checking.verdict().words.toStdString(); }
    std::string words_of(const char* title) const {
        for (const check_row& row : checking.rows())
            if (row.title == title)
                return row.words.toStdString();
        return {};
    }
    std::string all() const {
        QStringList lines{checking.verdict().words};
        for (const check_row& row : checking.rows())
            lines += row.title + ": " + row.words;
        return (lines + view.events).join('\n').toStdString();
    }
};

} // namespace

TEST(link_check, gives_its_verdict_on_each_kind) {
    const struct {
        const char* kind;
        grade how;
        const char* verdict;
    } rows[] = {
        {"elm327-v1.4", grade::good,
         "Good for codes and live data at 18 values/s (158 in a fast run). It is honest about its version, "
         "1.4."},
        {"clone-2.1", grade::amber,
         "Good for codes and live data at 10 values/s (72 in a fast run). A copy that is not honest about "
         "its version: it says 2.1 and does not know 6 of its 21 commands tried."},
        {"wifi", grade::amber,
         "Good for codes and live data at 16 values/s (167 in a fast run). A copy: it says version 1.5, "
         "which was never made."},
        {"ble", grade::good,
         "Good for codes and live data at 7.8 values/s (60 in a fast run). It is honest about its version, "
         "2.2."},
        {"stn", grade::good,
         "Good for codes and live data at 19 values/s (255 in a fast run). It is honest about its version, "
         "1.4b."},
    };
    for (const auto& row : rows) {
        checked bench(row.kind);
        bench.run();
        EXPECT_EQ(bench.ended, "done") << bench.all();
        EXPECT_EQ(bench.verdict(), row.verdict) << row.kind;
        EXPECT_EQ(bench.checking.verdict().how, row.how) << bench.all();
        EXPECT_EQ(bench.words_of("Losses").find("none in "), 0u) << row.kind;
        EXPECT_EQ(bench.words_of("Longest answer"), "271 bytes came whole; this car has no longer one");
        EXPECT_EQ(bench.checking.progress(), 100);
        EXPECT_TRUE(bench.live_controller.passport()) << row.kind; // the next fast run has it
        EXPECT_EQ(bench.clock.running(), 0u);
        EXPECT_FALSE(bench.link.has_changed_settings());
    }
}

// Each fault of cheap copies is told in its row, and none of them is taken for a false version.
TEST(link_check, tells_each_fault_of_cheap_copies) {
    const struct {
        const char* fault;
        const char* row;
        const char* words;
    } rows[] = {
        {"hang", "Fast runs", "It falls silent at 3 PIDs in one request."},
        {"no-count", "Fast runs", "Answers are lost by ending an answer at its last frame."},
        {"order", "Fast runs", "It answers 6 PIDs in one request."}, // which is no fault for this program
        {"drop", "Fast runs", "It does not answer 2 PIDs in one request in full."},
        {"cut", "Fast runs", "It does not answer 3 PIDs in one request in full."},
        {"ignore-s0", "Fast runs", "Without effect: leaving out blanks."},
        {"ignore-at2", "Fast runs", "Without effect: waiting less long behind an answer."},
        {"ignore-sh", "Fast runs", "Without effect: asking one ECU alone."},
        {"ignore-st", "Waiting time (AT ST)", "is answered OK, and has no effect"},
        {"ignore-cra", "Answers of one ECU alone (AT CRA)", "is answered OK, and has no effect"},
        {"buffer", "Longest answer",
         "mode 6: of an answer of 271 bytes only 251 come; the longest that came whole has 118 bytes"},
        {"ok-to-all", "Version",
         "says 1.4; not proven, because it answers OK to a command that does not exist"},
    };
    ASSERT_EQ(std::size(rows), virtual_adapter::clone_faults::names().size());
    for (const auto& row : rows) {
        checked bench{std::string(row.fault)};
        bench.run();
        EXPECT_EQ(bench.ended, "done") << bench.all();
        EXPECT_NE(bench.words_of(row.row).find(row.words), std::string::npos) << row.fault << bench.all();
        const bool is_harmless = std::string(row.fault) == "order";
        EXPECT_EQ(bench.checking.verdict().how == grade::good, is_harmless) << row.fault << bench.all();
        EXPECT_EQ(bench.verdict().find("A copy"), std::string::npos) << row.fault << bench.all();
    }
}

TEST(link_check, counts_what_is_lost) {
    const struct {
        virtual_adapter::faults what;
        const char* losses;
    } rows[] = {
        {{.lose_every = 51}, "of 500 requests 20 not answered"},
        {{.garbage_inside = "<RX ERROR", .garbage_every = 40, .garbage_spares_at = true},
         "of 500 requests 12 garbled"},
    };
    for (const auto& row : rows) {
        checked bench("elm327-v1.4", row.what);
        bench.run();
        EXPECT_EQ(bench.ended, "done") << bench.all();
        EXPECT_EQ(bench.words_of("Losses"), row.losses) << bench.all();
    }
}

// What it has by then is told, and what the adapter could not bear; the rest is tried all the same.
TEST(link_check, survives_adapters_that_do_not_bear_it) {
    const struct {
        virtual_adapter::faults what;
        bool is_done;
        const char* trouble;
        bool with_car;
    } rows[] = {
        {{.hangs_on = {"ATPPS"}}, true, "It fell silent at AT PPS.", true},
        {{.hangs_on = {"ATQQ"}}, true, "It fell silent at AT QQ.", true},
        {{.cut_after = 9}, false, "Its link was lost at AT AR.", false},
        {{.reset_closes = true}, true, "", true},
        {{.silent_from = 200}, true, "It fell silent at 010C.", true},
    };
    for (const auto& row : rows) {
        checked bench("clone-2.1", row.what);
        bench.run();
        EXPECT_EQ(bench.ended == "done", row.is_done) << bench.all();
        EXPECT_EQ(bench.words_of("Trouble"), row.trouble) << bench.all();
        EXPECT_EQ(bench.checking.findings().requests > 0, row.with_car) << bench.all();
    }
}

TEST(link_check, does_not_wait_for_ever_for_an_adapter_that_is_gone) {
    checked bench("stn", {.hangs_on = {"ATPPS"}});
    bench.run([&] { return !bench.checking.findings().troubles.isEmpty(); });
    bench.adapter->is_there = false;
    bench.pump_until([&] { return !bench.is_running(); }, 2);
    EXPECT_EQ(bench.ended, "failed");
    EXPECT_EQ(bench.checking.findings().troubles.last(), "Its link did not come back within a minute.");
    EXPECT_FALSE(bench.link.is_opening());
    EXPECT_EQ(bench.clock.running(), 0u);
}

// A late reply is not taken for the answer to another command, and noise not for one.
TEST(link_check, finds_the_same_whatever_happens_on_the_way) {
    checked calm("stn");
    calm.run();
    for (int at = 1; at <= 41; at += 2)
        for (const bool is_late : {false, true}) {
            virtual_adapter::faults trouble;
            if (is_late)
                trouble = {.late_reply = at, .late_ms = 3500};
            else
                trouble = {.garbage_before = "#\r", .garbage_every = 2 + at};
            checked bench("stn", trouble);
            bench.run();
            SCOPED_TRACE((is_late ? "late " : "noise ") + std::to_string(at));
            EXPECT_EQ(bench.ended, "done") << bench.all();
            for (const char* row : {"Version", "Commands", "Longest command", "Longest answer", "Trouble"})
                EXPECT_EQ(bench.words_of(row), calm.words_of(row)) << bench.all();
        }
}

TEST(link_check, without_a_car_tells_of_the_adapter_alone) {
    checked bench("stn", {}, talkative_car(false));
    bench.run();
    EXPECT_EQ(bench.ended, "failed");
    EXPECT_EQ(bench.verdict(), "No verdict on its work: only the adapter alone was checked, the car does not "
                               "answer. It is honest about its version, 1.4b.");
    EXPECT_EQ(bench.words_of("Losses"), "not tested: the car does not answer");
    EXPECT_EQ(bench.words_of("Version").find("honest"), 0u);
}

TEST(link_check, ends_at_any_command_when_it_is_stopped_or_the_link_is_lost) {
    constexpr qsizetype every_command = 60; // then the requests repeat
    for (const bool is_lost : {false, true}) {
        for (qsizetype at = 1; at < 700; at += at < every_command ? 1 : 40) {
            checked bench("stn");
            bench.run([&] { return bench.adapter->commands.size() >= at; });
            if (!bench.is_running())
                break;
            if (is_lost)
                bench.adapter->lose();
            else
                bench.checking.stop();
            bench.view.answer(true);
            for (int ms = 0; ms < 3000; ++ms)
                bench.clock.advance(1);
            SCOPED_TRACE((is_lost ? "lost at " : "stopped at ") + std::to_string(at));
            if (bench.adapter->commands.value(at - 1) != "ATZ" || !is_lost) {
                EXPECT_FALSE(bench.is_running());
                EXPECT_EQ(bench.clock.running(), 0u);
            }
            EXPECT_EQ(bench.ended == "done", false);
            EXPECT_FALSE(bench.verdict().empty());
            bench.checking.stop();
        }
    }
}

TEST(link_check, tells_a_version_by_the_commands_that_came_with_it) {
    using honesty = version_judgement::honesty;
    QStringList of_1_3;
    for (const elm_command& one : elm_commands())
        if (*place_of_version(one.since) <= *place_of_version("1.3"))
            of_1_3 += one.text;
    const struct {
        const char* greeting;
        QStringList unknown;
        honesty how;
        const char* behaves_as;
    } rows[] = {
        {"ELM327 v1.3", {"AT CEA"}, honesty::honest, "1.3"},
        {"ELM327v1.3a", {"AT FE"}, honesty::too_new, "1.3"},
        {"ELM327 v1.4b", {}, honesty::unknown, "1.3"}, // nothing of 1.4 was tried
        {"ELM327 v2.3", {"AT CEA", "AT PPS"}, honesty::too_new, "1.0"},
        {"ELM327 v1.5", {}, honesty::no_such_version, "1.3"},
        {"ELM327", {}, honesty::unknown, "1.3"},
    };
    for (const auto& row : rows) {
        QStringList known = of_1_3;
        known.removeIf([&](const QString& one) { return row.unknown.contains(one); });
        const version_judgement told = judge_version(row.greeting, known, row.unknown);
        EXPECT_EQ(told.how, row.how) << row.greeting;
        EXPECT_EQ(told.behaves_as, row.behaves_as) << row.greeting;
    }
}

} // namespace brivant
