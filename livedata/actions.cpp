#include "livedata/actions.h"

#include "base/string_table.h"
#include "livedata/sample_set.h"
#include "livedata/second_value.h"
#include "operations/put_back_settings.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace brivant {

namespace {

struct mode_of_choice {
    const char* name;
    int code;
    talk (*run)(sampling_talk&);
    const char* failure; // with one place for the reason
};

constexpr std::array<mode_of_choice, 4> modes{{
    {"Log Run", op_log_run, work_out_log, "work_out_log::Did not fully complete: ( %@)"},
    {"Fuel consumption", op_fuel, work_out_mpg, "work_out_mpg::Did not fully complete: ( %@)"},
    {"O2 Diags/Sampling", op_o2_layout, work_o2_layout, "work_o2_layout::Did not fully complete: ( %@)"},
    {"Boost", op_boost, work_out_boost, "work_out_boost::Did not fully complete: ( %@)"},
}};

constexpr int wait_before_putting_back_ms = 20;
constexpr int most_waits_before_putting_back = 50;

run_observer no_observer;

} // namespace

actions::actions(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                 user_defaults& settings, timers& time_source, live_results& its_results,
                 const app_paths& its_paths)
    : sampling_talk(its_car, its_link, its_toolies, its_view, time_source, its_results, its_paths),
      defaults(settings), watching(&no_observer) {
    storing.set_rate(defaults.value(setting::sample_rate));
    storing.saved_delayed_sample = [this] { set_status_msg(QStringLiteral("Saved delayed sample")); };
    storing.storing_failed = [this] {
        view.show_message(QString(),
                          QStringLiteral("The samples are shown, but not stored. ") + storing.problem());
    };
    if (results.by_standard != toolies.standard_reading())
        read_again(results, toolies);
    if (!results_still_fit())
        choose_mode(op_log_run);
}

actions::~actions() {
    watching = &no_observer;
    if (link.mainViewController() == this)
        link.set_controller(nullptr);
}

void actions::set_observer(run_observer* its_observer) {
    watching = its_observer ? its_observer : &no_observer;
}

// --- modes and sample sets -----------------------------------------------------------------------------

QStringList actions::mode_names() {
    QStringList names;
    for (const mode_of_choice& mode : modes)
        names += QLatin1String(mode.name);
    return names;
}

int actions::selected_index() const {
    const auto found = std::find_if(modes.begin(), modes.end(),
                                    [&](const mode_of_choice& mode) { return mode.code == results.mode; });
    return found == modes.end() ? 0 : static_cast<int>(found - modes.begin());
}

void actions::comboBoxSelectionDidChange(int index) {
    if (index == selected_index() || index < 0 || index >= static_cast<int>(modes.size()))
        return;
    end_run();
    const int mode = modes[static_cast<size_t>(index)].code;
    choose_mode(mode);
    if (mode == op_o2_layout)
        begin_run();
}

void actions::sample_set_changed() {
    own_pids = false;
    if (results.mode != op_log_run)
        return;
    end_run();
    choose_mode(op_log_run);
}

void actions::use_pids(const QStringList& pids) {
    end_run();
    own_pids = true;
    results.mode = op_log_run;
    take_set(usable_items(pids));
}

void actions::choose_mode(int mode) {
    own_pids = false;
    results.mode = mode;
    results.o2_mask = 0;
    take_set(mode == op_log_run ? log_run_set() : set_of_mode(mode));
}

QStringList actions::log_run_set() {
    return stored_log_run_set(defaults, toolies, state.cur_veh_id());
}

void actions::take_set(const QStringList& items) {
    results.pid_logitems_list = items;
    results.veh_id = state.cur_veh_id();
    results.metric = toolies.units() == unit_system::metric;
    results.by_standard = toolies.standard_reading();
    results.sample_cnt = 0;
    results.log_sample_cnt = 0;
    rework_gui_objects();
}

// The rows and the matrix of the set, without values.
void actions::rework_gui_objects() {
    results.these_samples.clear();
    for (const QString& item : std::as_const(results.pid_logitems_list)) {
        sample_row row;
        row.item = item;
        row.pid = item.section(u'|', 0, 0);
        row.name = toolies.get_pid_name_with_pid(row.pid);
        row.units = toolies.shown_units(row.pid);
        results.these_samples += row;
    }
    results.marks.clear();
    results.cur_log_points.start(static_cast<int>(results.these_samples.size()));
    work_out_sweeps(results, toolies);
    watching->set_changed();
}

// What is shown of the run before must be of this vehicle, its set, and the units in force.
bool actions::results_still_fit() {
    if (results.mode == 0 || results.veh_id != state.cur_veh_id() ||
        results.metric != (toolies.units() == unit_system::metric))
        return false;
    return results.mode != op_log_run || results.pid_logitems_list == log_run_set();
}

void actions::addEngECU_toPidList() {
    if (results.sample_cnt > 0)
        return; // a run keeps its columns over a new link
    const QString header = engine_ecu().header;
    if (results.mode == op_log_run && !own_pids) {
        // The initialisation rewrites the stored set when it finds another car.
        if (const QStringList stored = log_run_set(); stored != results.pid_logitems_list)
            take_set(stored);
        if (QStringList named = defaults.value(setting::sample_set.of_vehicle(state.cur_veh_id()));
            name_ecu(named, header))
            toolies.save_pids_2_sample_prefs(named);
    }
    name_ecu(results.pid_logitems_list, header);
    for (qsizetype i = 0; i < results.these_samples.size(); ++i)
        results.these_samples[i].item = results.pid_logitems_list.at(i);
}

// --- start and end -------------------------------------------------------------------------------------

void actions::runLogs() {
    if (is_running())
        return end_run();
    begin_run();
}

void actions::begin_run() {
    if (is_storing_run())
        return set_status_msg(QStringLiteral("The run before is being stored: one moment"));
    results.sample_cnt = 0;
    results.log_sample_cnt = 0;
    results.is_stored = false;
    results.log_id = -1;
    is_armed = true;
    storing.keep(results.trigger ? results.trigger->before_s : 0);
    if (positions)
        positions->begin();
    if (!results.trigger && defaults.value(setting::log_runs))
        begin_log();
    rework_gui_objects();
    const mode_of_choice& mode = modes[static_cast<size_t>(selected_index())];
    tell_trigger_without_pid();
    after_run.reset();
    if (car_talk::is_running())
        close(QString());
    start({mode.code, QStringLiteral("Starting run log"), mode.failure, nullptr,
           [this, run = mode.run] { return run_over_any_link(*this, run); }});
}

sampling_speed actions::speed() const {
    return static_cast<sampling_speed>(defaults.value(setting::sampling_speed));
}

std::optional<adapter_passport> actions::passport() const {
    return passport_in(defaults.value(setting::adapter_passports), link.place().address());
}

void actions::keep_passport(const adapter_passport& passport) {
    defaults.set(setting::adapter_passports,
                 with_passport(defaults.value(setting::adapter_passports), passport));
}

int actions::every_so_many_sweeps(const QString& pid) const {
    return rate_of_pid(pid, defaults.value(setting::pid_rates));
}

void actions::started() {
    if (cur_op() == op_put_back)
        return;
    sampling_talk::started();
    watching->run_started();
}

void actions::end_run() {
    if (is_storing_run())
        end_late_log();
    if (link.is_reconnecting())
        link.stop_opening(); // else it would be tried again
    leave_cur_op_gracefully(QStringLiteral(""));
}

void actions::let_go() {
    if (cur_op() == op_put_back)
        return;
    sampling_talk::let_go();
    storing.end();
    if (positions)
        positions->end();
    if (is_running())
        results.times.run_ends();
}

// A character would make the adapter break off what it still answers.
void actions::put_back() {
    if (link.is_late_reply_due() && ++waits_before_putting_back < most_waits_before_putting_back) {
        after_run = link.time_source().one_shot(wait_before_putting_back_ms, [this] { put_back(); });
        return;
    }
    after_run.reset();
    if (link.mainViewController() == this && link.is_connected())
        start({op_put_back, QString(), QStringLiteral("%@"), nullptr,
               [this] { return put_back_settings(*this); }});
    else if (operation_ended)
        operation_ended(false);
}

void actions::told_the_end(bool done) {
    if (cur_op() == op_put_back) {
        if (operation_ended)
            operation_ended(done);
        return;
    }
    waits_before_putting_back = 0;
    if (link.has_changed_settings())
        after_run = link.time_source().one_shot(0, [this] { put_back(); });
    if (storing.sweeps_lost() > 0)
        set_status_msg(storing.problem());
    watching->run_ended();
}

actions::zoomed actions::zoom(double slider) const {
    if (slider >= 1)
        return {-1, QStringLiteral("All sampling points")};
    const auto rows = static_cast<double>(results.cur_log_points.rows());
    const qsizetype points = slider <= 0 ? 20 : std::max<qsizetype>(2, static_cast<qsizetype>(slider * rows));
    return {points, fill(QStringLiteral("Charting last %d sampling points"), {QString::number(points)})};
}

} // namespace brivant
