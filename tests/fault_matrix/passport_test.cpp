#include "livedata/fast_gain.h"
#include "livedata/passport_words.h"
#include "tests/fault_matrix/matrix_bench.h"
#include "tools/virtual_adapter/kinds.h"

#include <gtest/gtest.h>

namespace brivant {

// What the first fast run finds out about each kind of adapter and about each fault of cheap copies.

namespace {

using effect = adapter_passport::effect;
using limit = adapter_passport::limit;

const QString rubbish[] = {
    "", "{}", "[1]", "null", "{\"address\":\"192.168.0.10:35000\"}", QString(3000, 'x'),
};

struct probed : matrix_bench {
    explicit probed(const char* kind, const std::vector<std::string>& clone_faults = {},
                    const char* car_name = "can11")
        : matrix_bench(steady_car(car_name)) {
        step_ms = 1;
        adapter->options = *virtual_adapter::adapter_of_kind(kind);
        for (const std::string& fault : clone_faults)
            EXPECT_TRUE(adapter->faults.clone.add(fault)) << fault;
        profile.defaults.set(setting::sampling_speed, 2);
        profile.defaults.set(setting::adapter_passports, QStringList(std::begin(rubbish), std::end(rubbish)));
    }
    // A fast run: its commands.
    QStringList run() {
        begin(live_controller);
        const qsizetype before = adapter->commands.size();
        live_controller.use_pids({"0C", "0D", "11"});
        live_controller.runLogs();
        pump();
        for (int ms = 0; live_controller.will_put_back() && ms < 5000; ++ms) {
            while (adapter->deliver_next()) {
            }
            clock.advance(1);
        }
        return adapter->commands.mid(before);
    }
    adapter_passport passport() {
        run();
        EXPECT_TRUE(live_controller.passport()) << qPrintable(view.events.join('\n'));
        return live_controller.passport().value_or(adapter_passport());
    }
};

std::string text_of(const adapter_passport& passport) {
    return line_of(passport).toStdString();
}

} // namespace

TEST(passport, says_what_each_kind_can_and_what_limits_it) {
    const struct {
        const char* kind;
        limit by;
        double least_values, most_values;
    } rows[] = {
        {"elm327-v1.4", limit::line, 80, 250}, {"clone-2.1", limit::way, 30, 90},
        {"wifi", limit::ecu, 100, 250},        {"ble", limit::way, 40, 100},
        {"stn", limit::ecu, 150, 500},
    };
    for (const auto& row : rows) {
        probed bench(row.kind);
        const adapter_passport told = bench.passport();
        SCOPED_TRACE(row.kind + (": " + text_of(told)));
        EXPECT_EQ(told.address, "192.168.0.10:35000");
        EXPECT_EQ(told.ecus, 2);
        EXPECT_EQ(told.unanswered, 0);
        EXPECT_EQ(told.no_blanks, effect::shown);
        EXPECT_EQ(told.waits_shorter, effect::shown);
        EXPECT_EQ(told.addresses_one, effect::shown);
        EXPECT_EQ(told.counts, effect::shown);
        EXPECT_EQ(told.most_pids, 6);
        EXPECT_EQ(told.too_many, 0);
        EXPECT_EQ(told.limited_by(), row.by);
        EXPECT_GT(told.values_a_second, row.least_values);
        EXPECT_LT(told.values_a_second, row.most_values);
        const QStringList again = bench.run();
        EXPECT_FALSE(again.contains("ATRV")) << "probed twice: " << again.join(' ').toStdString();
    }
}

TEST(passport, says_what_a_cheap_copy_cannot) {
    using told = const adapter_passport&;
    const struct {
        const char* fault;
        bool (*is_told)(told);
    } rows[] = {
        {"hang", [](told p) { return p.too_many == 3 && p.most_pids == 2 && p.hangs; }},
        {"no-count", [](told p) { return p.counts == effect::fails; }},
        {"order", [](told p) { return p.most_pids == 6; }}, // which is none for this program
        {"drop", [](told p) { return p.most_pids == 1 && p.too_many == 2 && !p.hangs; }},
        {"cut", [](told p) { return p.most_pids == 2 && p.too_many == 3; }},
        {"ignore-s0", [](told p) { return p.no_blanks == effect::none; }},
        {"ignore-at2", [](told p) { return p.waits_shorter == effect::none; }},
        {"ignore-sh", [](told p) { return p.addresses_one == effect::none && !p.abilities().addresses_one; }},
    };
    for (const auto& row : rows) {
        probed bench("clone-2.1", {row.fault});
        const adapter_passport passport = bench.passport();
        EXPECT_TRUE(row.is_told(passport)) << row.fault << ": " << text_of(passport);
        EXPECT_GE(bench.live.sample_cnt, matrix_bench::sweeps_of_a_run) << row.fault;
    }
}

TEST(passport, is_told_in_words) {
    const auto words = [](const char* kind, const std::vector<std::string>& faults) {
        QStringList told = sentences_of(probed(kind, faults).passport());
        told.first().remove(QDate::currentDate().toString(Qt::ISODate));
        return told.join('\n').toStdString();
    };
    EXPECT_EQ(
        words("stn", {}),
        "By what it does, an adapter that can do all that was tried (, in a car of which 2 ECUs answered).\n"
        "What works: leaving out blanks, waiting less long behind an answer, asking one ECU alone and ending "
        "an answer at its last frame.\n"
        "It answers 6 PIDs in one request.\n"
        "It reached 254 values a second.\n"
        "The car limits it: its ECU takes 16 of the 24 ms of a request.");
    EXPECT_EQ(words("clone-2.1", {"hang", "no-count", "ignore-s0"}),
              "By what it does, an adapter that says OK also to what it does not do (, in a car of which 2 "
              "ECUs answered).\n"
              "What works: waiting less long behind an answer and asking one ECU alone.\n"
              "Without effect: leaving out blanks.\n"
              "Answers are lost by ending an answer at its last frame.\n"
              "It answers 2 PIDs in one request. It falls silent at 3 PIDs in one request.\n"
              "It reached 23 values a second.\n"
              "The way to the adapter and back limits it: it takes 45 of the 85 ms of a request.");
}

// A run at the usual speed knows what a fast one would give: by its own moments, and better by the passport.
TEST(passport, tells_what_a_fast_run_would_give) {
    for (const char* kind : {"stn", "wifi", "clone-2.1"}) {
        probed bench(kind);
        const auto sweep_ms = [&](int speed) { // in the long run
            constexpr int settled = 30;
            constexpr int counted = 20;
            std::int64_t took_us = 0;
            bench.profile.defaults.set(setting::sampling_speed, speed);
            bench.on_sweep = [&] {
                if (bench.live.sample_cnt == settled)
                    took_us -= bench.clock.microseconds();
                if (bench.live.sample_cnt == settled + counted) {
                    took_us += bench.clock.microseconds();
                    bench.live_controller.stop();
                }
            };
            const bool is_changed = bench.run().contains("ATS0");
            EXPECT_EQ(is_changed, speed > 0);
            return double(took_us) / 1000 / counted;
        };
        const double usual_ms = sweep_ms(0);
        const double by_moments = fast_gain(bench.live_controller).value_or(0);
        const double fast_ms = sweep_ms(2);
        EXPECT_EQ(fast_gain_sentence(bench.live_controller), "");
        sweep_ms(0);
        const double by_passport = fast_gain(bench.live_controller).value_or(0);
        const double gain = usual_ms / fast_ms;
        SCOPED_TRACE(kind + (": " + std::to_string(gain)));
        EXPECT_GT(by_moments, 0.5 * gain);
        EXPECT_LT(by_moments, 1.15 * gain);
        EXPECT_GT(by_passport, 0.6 * gain);
        EXPECT_LT(by_passport, 1.15 * gain);
        EXPECT_EQ(fast_gain_sentence(bench.live_controller),
                  QString("Asked fast, this set would give about %1 times as many values a second")
                      .arg(int(by_passport)));
    }
}

// What cannot be tried in a car is not told, and may be tried in the next one.
TEST(passport, is_quiet_about_what_a_car_does_not_let_it_try) {
    for (const char* car : {"iso9141", "kwp", "j1850vpw"}) {
        probed bench("clone-2.1", {}, car);
        const adapter_passport told = bench.passport();
        SCOPED_TRACE(car + (": " + text_of(told)));
        EXPECT_EQ(told.most_pids, 0);
        EXPECT_EQ(told.addresses_one, effect::untried);
        EXPECT_EQ(told.counts == effect::untried, QString(car) == "j1850vpw");
        EXPECT_EQ(told.abilities(), (request_plan::abilities{6, true, true}));
        EXPECT_GE(bench.live.sample_cnt, matrix_bench::sweeps_of_a_run);
    }
}

TEST(passport, is_kept_for_the_last_sixteen_adapters) {
    adapter_passport one{.address = "a", .probed = QDate(2026, 1, 31), .answer_ms = 12.3, .too_many = 3};
    QStringList lines(std::begin(rubbish), std::end(rubbish));
    for (int i = 0; i < 20; ++i) {
        one.address = QString("\"%1,\n").arg(i);
        lines = with_passport(lines, one);
    }
    EXPECT_EQ(lines.size(), 16);
    EXPECT_FALSE(passport_in(lines, "\"3,\n"));
    EXPECT_EQ(passport_in(lines, one.address), one);

    const QString good = line_of(one);
    for (const auto& [from, to] : {std::pair("12.3", "-1"),
                                   {"12.3", "1e9"},
                                   {"12.3", "\"12\""},
                                   {"2026-01-31", "2026-02-31"},
                                   {"\"too_many\":3", "\"too_many\":2.5"},
                                   {"\"too_many\":3", "\"too_many\":7"},
                                   {"untried", "tried"},
                                   {"\"hangs\":false", "\"hangs\":0"}}) {
        EXPECT_NE(QString(good).replace(from, to), good) << from;
        EXPECT_FALSE(passport_of_line(QString(good).replace(from, to))) << from << " " << to;
    }
}

} // namespace brivant
