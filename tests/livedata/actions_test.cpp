#include "tests/livedata/live_bench.h"
#include "tests/support/other_program.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

conversation conversation_of(const char* text) {
    return conversation::parse(text, "here", QStringLiteral(BV_TESTS "/livedata/conversations"));
}

QString set_of(live_bench& bench) {
    bench.opened();
    return bench.results.pid_logitems_list.join(' ');
}

} // namespace

TEST(actions, the_sample_set_that_is_stored) {
    const auto set_with = [](const std::optional<setting_row>& which, const QStringList& items) {
        live_bench bench;
        bench.profile.defaults.remove(setting::sample_set.of_vehicle(bench.state.cur_veh_id()));
        if (which)
            bench.profile.defaults.store(*which, items);
        const QString set = set_of(bench);
        EXPECT_TRUE(which == setting::sample_set || bench.facts["samples"]() == set);
        return set;
    };
    const setting_row own = setting::sample_set.of_vehicle(1);
    EXPECT_EQ(set_with(own, {"0C|7E8", "0D"}), "0C|7E8 0D");
    EXPECT_EQ(set_with(setting::older_sample_set, {"0C", "0B"}), "0C 0B"); // of an older version
    EXPECT_EQ(set_with({}, {}), "0D 11 0C 05");
    // What a damaged settings file may hold: only what can be asked for is, once.
    EXPECT_EQ(set_with(own, {"", "0", "XY", "0C", "0c", "E4", "0D|" + QString(500, 'x'), "e5", "0b|7E8"}),
              "0C E4 E5 0B|7E8 0D 10");
}

TEST(actions, zoom) {
    live_bench bench;
    brivant::actions& screen = bench.opened();
    for (int row = 1; row < 50; ++row) {
        EXPECT_EQ(screen.zoom_slider_shown(), row >= 21);
        bench.results.cur_log_points.add_row();
    }
    EXPECT_EQ(screen.zoom(0).points, 20);
    EXPECT_EQ(screen.zoom(1).points, -1);
    EXPECT_EQ(screen.zoom(1).title, "All sampling points");
    EXPECT_EQ(screen.zoom(0.5).points, 25);
    EXPECT_EQ(screen.zoom(0.5).title, "Charting last 25 sampling points");
    EXPECT_EQ(screen.zoom(0.001).points, 2); // a line needs two
}

TEST(actions, what_was_read_outlives_the_screen_until_it_no_longer_fits) {
    live_bench bench;
    const QString played =
        play(conversation_of("! pids 0C\n"
                             "! do button\n"
                             "! include ../../diagnostics/conversations/parts/can11_connected.txt\n"
                             "> 01 0C\n< 7E8 04 41 0C 1A F8 \n> 01 0C\n! do stop"),
             bench);
    EXPECT_EQ(played, "");
    bench.toolies.save_pids_2_sample_prefs({"0C|7E8"});
    const auto screen_again = [&bench] {
        bench.controller.reset();
        bench.opened();
        return bench.facts["latest"]();
    };
    EXPECT_EQ(screen_again(), "1726.00 RPM");
    EXPECT_EQ(bench.results.cur_log_points.rows(), 2);
    bench.profile.defaults.set(setting::metric_units, false);
    EXPECT_EQ(screen_again(), "");
    EXPECT_EQ(bench.results.cur_log_points.rows(), 1);
}

TEST(actions, sweeps_that_could_not_be_stored_are_counted_and_leave_a_gap) {
    live_bench bench;
    const QString begun =
        play(conversation_of("! store\n! pids 0C\n! do button\n"
                             "! include ../../diagnostics/conversations/parts/can11_connected.txt\n"
                             "> 01 0C\n< 7E8 04 41 0C 1A F8 \n> 01 0C"),
             bench);
    EXPECT_EQ(begun, "");
    other_program other(bench.profile.db.path());
    other.runs("ALTER TABLE LOGGIES_DATA RENAME TO AWAY");
    bench.adapter->receive("7E8 04 41 0C 1A F8 \r\r>");
    bench.adapter->receive("7E8 04 41 0C 1A FC \r\r>");
    EXPECT_EQ(bench.view.events.filter("message: The samples are shown, but not stored. ").size(), 1);
    EXPECT_EQ(bench.facts["sweeps"](), "3");
    EXPECT_EQ(bench.facts["lines"](), "1");
    other.runs("ALTER TABLE AWAY RENAME TO LOGGIES_DATA");
    bench.adapter->receive("7E8 04 41 0C 1A FC \r\r>");
    EXPECT_EQ(bench.facts["data"](), "0:410C1AF8 / 1:~ / 2:410C1AFC");
    EXPECT_EQ(bench.controller->sweeps_lost(), 2);
    bench.controller->stop();
    EXPECT_TRUE(bench.view.last("status").startsWith("2 sweeps could not be stored. "));
    EXPECT_EQ(bench.facts["log"](), "Log [2 Sample points  ]");
}

// A run that is stored as it goes on, or at its end out of memory.
static void expect_moments(bool is_stored_late) {
    live_bench bench;
    EXPECT_EQ(play(conversation_of(is_stored_late ? "" : "! store\n"), bench), "");
    EXPECT_EQ(play(conversation_of("! pids 0C 0D\n! do button\n"
                                   "! include ../../diagnostics/conversations/parts/can11_connected.txt\n"
                                   "> 01 0C"),
                   bench),
              "");
    const auto answer = [&bench](int delay_ms, const char* first, const char* rest) {
        bench.clock.advance(delay_ms);
        bench.adapter->receive(first);
        bench.clock.advance(7); // until the prompt comes
        bench.adapter->receive(rest);
    };
    answer(30, "7E8 04 41 0C", " 1A F8 \r\r>");
    answer(50, "7E8 03 41 0D 3C \r", "\r>");
    answer(20, "NO DATA\r", "\r>");
    answer(40, "7E8 03 41 0D 3D \r", "\r>");
    const sample_times& shown = bench.results.cur_log_points.times(); // the same
    EXPECT_DOUBLE_EQ(shown.moment(0, 1), 62);
    EXPECT_DOUBLE_EQ(shown.begin_of(1), 94);
    EXPECT_DOUBLE_EQ(shown.moment(1, 1), 141);

    bench.clock.advance(3);
    bench.controller->put_mark("the lights went on");
    EXPECT_EQ(bench.view.last("status"), "Marked at 0.2 s: the lights went on");
    bench.controller->stop();
    bench.controller->put_mark("too late");
    EXPECT_EQ(bench.view.last("status"), "No mark: the run has not begun to ask the car");
    if (is_stored_late) {
        EXPECT_EQ(bench.facts["log"](), "");
        EXPECT_TRUE(bench.controller->can_store_run());
        bench.controller->store_run();
        EXPECT_FALSE(bench.controller->can_store_run());
    }
    EXPECT_EQ(bench.facts["log"](), "Log [2 Sample points  ]");
    EXPECT_EQ(bench.facts["data"](), "0:410C1AF8,410D3C / 1:~,410D3D");
    EXPECT_EQ(bench.rows("SELECT LINE_NUMBER || ':' || MILLISECONDS || '/' || OFFSETS FROM BV_MOMENTS"),
              "0:0.0/15.00,62.00 / 1:94.0/,47.00");
    EXPECT_EQ(bench.rows("SELECT COUNT(*), STARTED_UTC_MS > 1700000000000 FROM BV_RUNS"), "1 1");
    EXPECT_EQ(bench.rows("SELECT LOG_ID, MILLISECONDS, TEXT FROM BV_MARKS"), "1 171.0 the lights went on");
    EXPECT_EQ(bench.results.marks.size(), 1);
}

TEST(actions, a_value_is_true_between_its_request_and_its_reply) {
    for (const bool is_stored_late : {false, true})
        expect_moments(is_stored_late);
}

TEST(actions, a_log_begins_before_a_value_comes_and_ends_behind_another) {
    live_bench bench;
    bench.opened().store_when(store_trigger{*pid_limit_of("0B>2"), {}, 0});
    bench.opened().runLogs();
    bench.controller->stop();
    EXPECT_TRUE(bench.view.last("message").contains("(0B)"));
    bench.opened().store_when(store_trigger{*pid_limit_of("0C>2000"), pid_limit_of("0c < 1000"), 2});
    EXPECT_FALSE(pid_limit_of("0C=4") || pid_limit_of("C>4") || pid_limit_of("0C>4;"));
    EXPECT_EQ(play(conversation_of("! pids 0C\n! do button\n"
                                   "! include ../../diagnostics/conversations/parts/can11_connected.txt\n"
                                   "> 01 0C"),
                   bench),
              "");
    // A second a sweep, in rounds a minute; 0 is none.
    for (const int rpm : {1500, 1501, 1502, 0, 2001, 1504, 2002, 900, 901, 2003, 2004, 800, 2005}) {
        bench.clock.advance(1000);
        if (rpm == 1502) // it is known for a while, before what begins the log
            bench.position.fix = position_fix{{52.5, 13.25}, bench.clock.microseconds()};
        if (rpm == 1504)
            bench.position.fix.reset();
        const QString raw = QString::number(4 * rpm, 16).toUpper().rightJustified(4, u'0');
        bench.adapter->receive(rpm == 0 ? QByteArray("NO DATA\r\r>")
                                        : "7E8 04 41 0C " + raw.first(2).toLatin1() + ' ' +
                                              raw.last(2).toLatin1() + " \r\r>");
        if (rpm == 0)
            bench.controller->put_mark("in the gap");
    }
    bench.controller->stop();
    EXPECT_EQ(bench.rows("SELECT LOG_ID || ':' || GROUP_CONCAT(DATA, ' ') FROM LOGGIES_DATA GROUP BY LOG_ID"),
              "1:410C1778 ~ 410C1F44 410C1780 410C1F48 410C0E10 / "
              "2:410C0E14 410C1F4C 410C1F50 410C0C80 / 3:410C1F54");
    EXPECT_EQ(bench.rows("SELECT GROUP_CONCAT(CAST(MILLISECONDS AS INT)) FROM BV_MOMENTS GROUP BY LOG_ID"),
              "0,1000,2000,3000,4000,5000 / 0,1000,2000,3000 / 0");
    EXPECT_EQ(bench.rows("SELECT STARTED_UTC_MS - (SELECT MIN(STARTED_UTC_MS) FROM BV_RUNS) FROM BV_RUNS"),
              "0 / 6000 / 10000");
    EXPECT_EQ(bench.facts["log"](),
              "Log [5 Sample points   +GPS ] / Log [4 Sample points  ] / Log [1 Sample points  ]");
    EXPECT_EQ(bench.rows("SELECT LOG_ID, CAST(MILLISECONDS AS INT), TEXT FROM BV_MARKS"),
              "1 2000 in the gap");
    EXPECT_EQ(bench.rows("SELECT LOG_ID, LINE_NUMBER, CAST(OFFSET_MS AS INT) FROM BV_POSITIONS"),
              "1 0 1000 / 1 2 -1000");
    EXPECT_FALSE(bench.position.is_asked);
}

TEST(sweep_times, duration_and_rate_of_the_latest_sweeps) {
    qint64 now = 5000;
    sweep_times times([&now] { return now; });
    EXPECT_EQ(times.duration_ms(), 0);
    times.run_begins();
    for (int sweep = 0; sweep < 100; ++sweep) {
        now += sweep < 70 ? 1000 : 250; // the car answers faster at the end
        times.sweep_complete(3);
    }
    EXPECT_EQ(times.duration_ms(), 77'500);
    EXPECT_DOUBLE_EQ(times.sweeps_a_second(), 4);
    EXPECT_DOUBLE_EQ(times.values_a_second(), 12);
    times.run_ends();
    now += 60'000;
    EXPECT_EQ(times.duration_ms(), 77'500);
    times.clear();
    times.run_begins();
    times.sweep_complete(3);
    EXPECT_EQ(times.sweeps_a_second() + times.values_a_second(), 0); // one tells nothing
    now += 60'000;
    times.gap();
    times.run_begins(); // it goes on
    EXPECT_EQ(times.duration_ms(), 60'000);
    times.sweep_complete(3);
    times.sweep_complete(3);
    EXPECT_GT(times.sweeps_a_second(), 0) << "two in a millisecond are fast";
    now += 2001;
    EXPECT_EQ(times.sweeps_a_second() + times.values_a_second(), 0) << "the next one is overdue";
    times.run_ends();
    EXPECT_GT(times.sweeps_a_second(), 0);
}

} // namespace brivant
