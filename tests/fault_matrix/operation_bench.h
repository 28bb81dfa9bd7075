#pragma once

#include "base/console_log.h"
#include "diagnostics/readCodes.h"
#include "expert/expertCtrlr.h"
#include "livedata/actions.h"
#include "livedata/link_check.h"
#include "persistence/vehicles.h"
#include "tests/support/print_qt.h"
#include "tests/support/recording_screen.h"
#include "tests/support/temporary_profile.h"
#include "tools/virtual_adapter/car_catalogue.h"

#include <set>

namespace brivant {

// The controllers on one link, and a person who starts an operation and ends a sampling run after some
// sweeps. The clock outlives it.
class operation_bench : protected run_observer {
public:
    static constexpr int sweeps_of_a_run = 4;

    operation_bench(timers& time_source, adapter_link::transport_maker make)
        : clock_of_all(time_source), link{place, facts, time_source, view, std::move(make)} {
        silence_console_log();
        place.choose(interface_wifi);
        profile.db.init_DB();
        if (const auto first = vehicle_or_first(profile.db, -1))
            state.make_current(first->id, {});
        profile.defaults.set(setting::metric_units, true);
        profile.defaults.set(setting::log_runs, true);
        live_controller.set_observer(this);
        diagnostics.operation_ended = [this](bool done) { ended = done ? "done" : "failed"; };
        console.operation_ended = [this](bool done) { ended = done ? "done" : "failed"; };
        checking.operation_ended = [this](bool done) { ended = done ? "done" : "failed"; };
    }
    ~operation_bench() override { link.set_controller(nullptr); }

    temporary_profile profile;
    adapter_place place;
    adapter_facts facts;
    car_state state;
    recording_screen view;
    timers& clock_of_all;
    adapter_link link;
    mac_toolies toolies{facts, state, profile.defaults, profile.db};
    diagnostic_results results;
    live_results live{[this](const QString& body) { return toolies.get_OBDVal(body); }};
    readCodes diagnostics{state, link, toolies, view, results, profile.paths};
    actions live_controller{state, link, toolies, view, profile.defaults, clock_of_all, live, profile.paths};
    expert_session session{profile.defaults};
    expertCtrlr console{state, link, toolies, view, profile.defaults, session};
    link_check checking{state, link, toolies, view, profile.defaults, clock_of_all, profile.paths};

    QString ended;                  // how the last operation ended; "" while it runs
    std::set<QString> columns;      // "0C 410C1AF8": what a run has put into the matrix
    qint64 missing = 0;             // cells that were left without a value
    std::function<void()> on_sweep; // the person's doing

    virtual void begin(task_controller& controller) {
        link.set_controller(&controller);
        view.events.clear();
        session.lines.clear();
        ended.clear();
        columns.clear();
    }
    bool is_running() const {
        return diagnostics.is_running() || live_controller.is_running() || console.is_running() ||
               checking.is_running();
    }

protected:
    void sweep_completed() override {
        if (on_sweep)
            on_sweep();
        else if (live.sample_cnt >= sweeps_of_a_run)
            live_controller.stop();
    }

private:
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override { ended = live.sample_cnt >= sweeps_of_a_run ? "done" : "failed"; }
    void sample_arrived(int index) override {
        const QString body = live.cur_log_points.body(live.cur_log_points.rows() - 1, index);
        if (body == no_reply)
            ++missing;
        else
            columns.insert(live.these_samples[index].pid + ' ' + body);
    }
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}
};

// A car of the catalogue at a steady 60 km/h, with every PID that an operation can ask of an engine.
inline std::shared_ptr<virtual_adapter::car> steady_car(const QString& name) {
    QString problem;
    virtual_adapter::car_description description = virtual_adapter::load_car(name, problem)->description();
    for (const std::uint8_t pid : {0x06, 0x08, 0x0A, 0x0B, 0x0C, 0x0D, 0x10, 0x11, 0x05})
        description.ecus.front().pids.try_emplace(pid,
                                                  virtual_adapter::pid_value{.live = true, .constant = {}});
    auto made = std::make_shared<virtual_adapter::car>(std::move(description));
    made->set_clock([] { return virtual_adapter::steady_moment_s; });
    return made;
}

} // namespace brivant
