#pragma once

#include "livedata/late_log.h"
#include "livedata/sampling_talk.h"
#include "livedata/store_trigger.h"

namespace brivant {

// The controller of the live-data screen: it chooses the sample set of a mode, and starts and ends
// sampling runs. What the runs have read stands in live_results; the view hears of changes through its
// run_observer.
//
// A view needs: the choice of the mode (mode_names, selected_index, comboBoxSelectionDidChange), the button
// (runLogs, is_running), sample_set_changed() after other PIDs were chosen, zoom(), results() and a
// run_observer. Status lines come with every reply ("Got proper reply: ..."): show them at the next frame,
// not each.
class actions : public sampling_talk {
public:
    // Everything referred to outlives the controller. The results of the run before are kept when they still
    // fit the units and the sample set; otherwise the screen begins with an empty Log Run.
    actions(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
            user_defaults& settings, timers& time_source, live_results& its_results,
            const app_paths& its_paths);
    ~actions() override;

    // Null for none. It outlives the controller, or is taken away before. When it is told something it may
    // end the run, and do nothing else with the controller.
    void set_observer(run_observer* its_observer);

    // The modes in the order of the choice: "Log Run", "Fuel consumption", "O2 Diags/Sampling", "Boost".
    static QStringList mode_names();
    int selected_index() const;
    // Ends a run, and chooses the mode. "O2 Diags/Sampling" starts its run at once.
    void comboBoxSelectionDidChange(int index);
    // The person has chosen other PIDs for this vehicle (save_pids_2_sample_prefs): a Log Run ends, and has
    // the new set.
    void sample_set_changed();
    // A Log Run of these PIDs ("0C"), which are not saved as the person's choice.
    void use_pids(const QStringList& pids);
    // Seconds between the sweeps that are stored, -1 for every sweep. The stored setting counts until then.
    void set_sample_rate(int seconds) { storing.set_rate(seconds); }

    // The next runs are stored by this, whatever the setting says; by the setting without one.
    void store_when(const std::optional<store_trigger>& its_trigger) { results.trigger = its_trigger; }
    // The run has ended and was not stored, but is still in memory.
    bool can_store_run() const;
    // Stores it, a slice at a time; the status tells how far it is, run_observer::run_ended() comes at its
    // end. A mode chosen meanwhile ends it with the sweeps stored so far.
    void store_run();
    bool is_storing_run() const { return late != nullptr; }

    // The button: starts a run, or ends the one that is active.
    void runLogs();
    // A mark at this moment of the run, also in what is stored of it. "" for none of the person's own words.
    // The status tells what became of it.
    void put_mark(const QString& word);
    // Why sweeps of the run were not stored, a sentence; "" while all is well.
    QString storing_problem() const { return storing.problem(); }
    int sweeps_lost() const { return storing.sweeps_lost(); }
    // Whether a position is stored with the sweeps, and why not, as a line.
    QString about_positions() const { return positions ? positions->about() : QString(); }

    // What the zoom slider (0 to 1) says about the chart: how many of the last sweeps it shows, -1 for all,
    // and its title. The slider is shown from 21 rows of the matrix on.
    struct zoomed {
        qsizetype points;
        QString title;
    };
    zoomed zoom(double slider) const;
    bool zoom_slider_shown() const { return results.cur_log_points.rows() >= 21; }

    // sampling_talk
    run_observer& observer() override { return *watching; }
    void addEngECU_toPidList() override;
    void take_set(const QStringList& items) override;
    void take_sweep(const QString& line, const sweep_moment& when) override;
    sampling_speed speed() const override;
    std::optional<adapter_passport> passport() const override;
    void keep_passport(const adapter_passport& passport) override;
    int every_so_many_sweeps(const QString& pid) const override;

    // car_talk: what is put back at the adapter behind a run is not part of it.
    bool is_running() const override { return car_talk::is_running() && cur_op() != op_put_back; }
    // It has changed settings of the adapter, which are put back; operation_ended tells the end.
    bool will_put_back() const { return after_run != nullptr || cur_op() == op_put_back; }

private:
    void choose_mode(int mode);
    QStringList log_run_set();
    bool results_still_fit();
    void rework_gui_objects();
    void begin_run();
    void begin_log();
    bool is_met(const pid_limit& limit) const;
    void tell_trigger_without_pid();
    void begin_log_when_triggered(double now_ms);
    void end_log_when_triggered();
    void end_run();
    void put_back();
    void store_slice();
    void end_late_log();
    void started() override;
    void let_go() override;
    void told_the_end(bool done) override;

    user_defaults& defaults;
    run_observer* watching;
    bool is_armed = false; // what begins a log was not true before
    std::unique_ptr<late_log> late;
    timer_handle next_slice;
    timer_handle after_run;
    int waits_before_putting_back = 0;
    bool own_pids = false; // the Log Run set is not the person's stored choice
};

} // namespace brivant
