#include "tests/fault_matrix/matrix_bench.h"

#include <gtest/gtest.h>

namespace brivant {

// What goes on in spite of a fault: runs and scripts over a lost link, runs behind late replies, and
// operations with adapters that do not know a command.

namespace {

void start_a_run(matrix_bench& bench, const QStringList& pids) {
    bench.begin(bench.live_controller);
    bench.live_controller.use_pids(pids);
    bench.live_controller.runLogs();
}

QStringList stored_lines(matrix_bench& bench) {
    QStringList lines;
    for (const QStringList& row :
         bench.profile.db.retrieve_from_DB("SELECT LOG_ID || ':' || DATA FROM LOGGIES_DATA"))
        lines += row[0];
    return lines;
}

void run_to(matrix_bench& bench, qint64 sweeps) {
    bench.pump_until([&] { return bench.live.sample_cnt >= sweeps || !bench.is_running(); });
}

} // namespace

// The adapter loses its power, the network goes without a word, the car is off for a while.
TEST(going_on, over_a_lost_link_in_the_same_log) {
    for (const int kind : {interface_wifi, interface_bluetooth}) {
        matrix_bench bench(steady_car("can11"));
        bench.place.choose(kind);
        bench.place.take_device("AA:BB:CC:DD:EE:01", QString());
        bench.on_sweep = [] {}; // nobody stops it
        start_a_run(bench, {"0C", "0D", "05"});
        run_to(bench, 3);
        ASSERT_EQ(stored_lines(bench).size(), 3);
        const QString line = stored_lines(bench).first();

        bench.adapter->is_there = false;
        bench.adapter->lose(); // a power cycle
        bench.clock.advance(100000);
        EXPECT_TRUE(bench.view.last("status").startsWith("Connection lost. Trying again"));
        bench.adapter->is_there = true;
        run_to(bench, 6);
        bench.adapter->faults.silent_from = 1; // the network is gone, and nobody says so
        bench.adapter->fall_silent();
        bench.pump_until([&] { return bench.link.is_reconnecting(); });
        bench.adapter->faults = {};
        run_to(bench, 9);

        const QString gap = line.section(':', 0, 0) + ":~,~,~";
        QStringList lines = stored_lines(bench);
        EXPECT_EQ(lines.mid(0, 7), QStringList({line, line, line, gap, line, line, line})) << kind;
        // Five time-outs and the loss are one gap.
        EXPECT_EQ(lines.removeAll(line), 9);
        EXPECT_EQ(lines.removeAll(gap), 2);
        EXPECT_EQ(lines, QStringList());
        bench.live_controller.stop();
        EXPECT_EQ(bench.clock.running(), bench.adapter->is_waiting() ? 1u : 0u);
        EXPECT_EQ(bench.profile.db.retrieve_from_DB("SELECT LOG_ID FROM LOGGIES").size(), 1);
    }
}

TEST(going_on, a_script_asks_the_byte_that_was_not_answered) {
    matrix_bench bench(steady_car("can11"));
    bench.begin(bench.console);
    bench.console.load();
    bench.console.start_script({"01 {L}", "0C", "0F", "3"});
    bench.pump_until([&] { return bench.console.commands_answered() == 6; });
    bench.adapter->lose();
    bench.pump_until([&] { return !bench.is_running(); });
    EXPECT_EQ(bench.ended, "done");
    EXPECT_EQ(bench.console.commands_answered(), 12);
    EXPECT_EQ(bench.session.lines.as_text().count("-- the connection was lost --"), 1);

    bench.console.handle_a_send("AT RV"); // one that was typed is the person's to send again
    bench.adapter->lose();
    EXPECT_FALSE(bench.is_running());
    EXPECT_EQ(bench.ended, "failed");
    bench.clock.advance(60'000);
    EXPECT_FALSE(bench.link.is_connected()); // the next command opens it
    bench.console.handle_a_send("AT RV");
    bench.pump_until([&] { return !bench.is_running(); });
    EXPECT_EQ(bench.ended, "done");
    bench.link.set_controller(nullptr);
    EXPECT_EQ(bench.clock.running(), 0u);
}

// A reply later than the time-out costs its sweep some commands; the sweep after the next is as before, and
// no reply is on its way behind the one that was asked for.
TEST(going_on, after_a_late_reply_as_many_commands_a_sweep_as_before) {
    const QStringList pids{"0C", "0D", "05", "10", "11"};
    for (const char* car : {"can11", "can29", "iso9141", "kwp", "j1850vpw"}) {
        for (const int late_ms : {3100, 5900, 6500, 11000}) {
            for (const int size : {1, 2, 5}) {
                matrix_bench bench(steady_car(car));
                bench.adapter->faults = {.late_reply = 30, .late_ms = late_ms};
                bool is_in_step = false;
                bench.on_sweep = [&] { is_in_step = bench.adapter->has_said_all(); };
                start_a_run(bench, pids.first(size));
                const int sweeps = 30 / size + 10;
                run_to(bench, sweeps);
                ASSERT_EQ(bench.commands_by_sweep.size(), sweeps) << car << late_ms;
                int odd_sweeps = 0, last_odd = 0;
                for (int sweep = 1; sweep < sweeps; ++sweep)
                    if (bench.commands_by_sweep[sweep] - bench.commands_by_sweep[sweep - 1] != size)
                        ++odd_sweeps, last_odd = sweep;
                // The one of the time-outs and one for what is on its way; one PID makes a sweep of each.
                EXPECT_LE(odd_sweeps, size == 1 ? 4 : 2) << car << ", " << late_ms << " ms, PIDs: " << size;
                EXPECT_LT(last_odd, sweeps - 1);
                EXPECT_TRUE(is_in_step) << car << ", " << late_ms << " ms, PIDs: " << size;
            }
        }
    }
}

// The plug may have been pulled instead: the link behind the next one asks again.
TEST(going_on, without_a_command_at_which_the_adapter_hangs) {
    matrix_bench bench(steady_car("can11"));
    bench.adapter->faults.hangs_on = {"ATRV"};
    const auto rows = [&bench] {
        bench.begin(bench.diagnostics);
        bench.diagnostics.readVehicleInfo();
        EXPECT_TRUE(bench.pump());
        return row_texts(part::vehicle, bench.results.rows(part::vehicle));
    };
    rows();
    EXPECT_EQ(bench.ended, "failed");
    EXPECT_EQ(bench.adapter->commands.count("ATRV"), 5);
    const QStringList without = rows();
    EXPECT_EQ(bench.ended, "done");
    EXPECT_EQ(bench.adapter->commands.count("ATRV"), 5);
    EXPECT_TRUE(without.contains(" Voltage: N/A") && without.contains(" VIN: 1G1JC5444R7252367"));
    bench.adapter->faults.hangs_on.clear();
    bench.link.disconnect();
    EXPECT_FALSE(rows().contains(" Voltage: N/A"));
    EXPECT_EQ(bench.adapter->commands.count("ATRV"), 6);
}

} // namespace brivant
