#include "livedata/actions.h"

#include "base/string_table.h"
#include "livedata/sample_set.h"
#include "livedata/second_value.h"

#include <algorithm>
#include <array>

namespace {

constexpr int idle = -1;

struct mode_of_choice {
    const char* name;
    int code;
};

constexpr std::array<mode_of_choice, 4> modes{{
    {"Log Run", op_log_run},
    {"Fuel consumption", op_fuel},
    {"O2 Diags/Sampling", op_o2_layout},
    {"Boost", op_boost},
}};

class nobody : public run_observer {
public:
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override {}
    void sample_arrived(int) override {}
    void sweep_completed() override {}
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}
};
nobody no_observer;

} // namespace

actions::actions(process_state& process, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                 user_defaults& settings, timers& time_source, live_results& its_results,
                 const app_paths& its_paths)
    : context{process,
              its_link,
              its_toolies,
              its_view,
              process.interface_description,
              process.protocol_description},
      state(process), defaults(settings), results_(its_results),
      storing(its_toolies.store(), time_source, its_paths), watching(&no_observer), pid_loop(context, *this),
      connector(context, *this, pid_loop), log_run(context, *this), fuel(context, *this),
      boost(context, *this), o2_layout(context, *this) {
    storing.set_rate(defaults.integer(QStringLiteral("BV_sample_rate"), -1));
    storing.saved_delayed_sample = [this] { set_status_msg(QStringLiteral("Saved delayed sample")); };
    storing.storing_failed = [this] {
        context.view.show_message(QString(), QStringLiteral("The samples are shown, but not stored. ") +
                                                 storing.problem());
    };
    if (results_.by_standard != context.toolies.standard_reading())
        read_again(results_, context.toolies);
    if (!results_still_fit())
        choose_mode(op_log_run);
    state.cur_op = results_.mode;
    state.cur_task = results_.mode;
}

actions::~actions() {
    watching = &no_observer;
    if (context.link.mainViewController() == this)
        context.link.set_controller(nullptr);
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
                                    [&](const mode_of_choice& mode) { return mode.code == results_.mode; });
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
    if (results_.mode != op_log_run)
        return;
    end_run();
    choose_mode(op_log_run);
}

void actions::use_pids(const QStringList& pids) {
    end_run();
    own_pids = true;
    results_.mode = op_log_run;
    take_set(usable_items(pids));
}

void actions::choose_mode(int mode) {
    own_pids = false;
    results_.mode = mode;
    state.cur_op = mode;
    state.cur_task = mode;
    results_.o2_mask = 0;
    take_set(mode == op_log_run ? log_run_set() : set_of_mode(mode));
}

QStringList actions::log_run_set() {
    return stored_log_run_set(defaults, context.toolies, state.cur_veh_id);
}

void actions::take_set(const QStringList& items) {
    results_.pid_logitems_list = items;
    results_.veh_id = state.cur_veh_id;
    results_.metric = context.toolies.units() == unit_system::metric;
    results_.by_standard = context.toolies.standard_reading();
    results_.sample_cnt = 0;
    results_.log_sample_cnt = 0;
    rework_gui_objects();
}

// The rows and the matrix of the set, without values.
void actions::rework_gui_objects() {
    results_.these_samples.clear();
    for (const QString& item : std::as_const(results_.pid_logitems_list)) {
        sample_row row;
        row.item = item;
        row.pid = item.section(u'|', 0, 0);
        row.name = context.toolies.l_get_pid_name(row.pid, false);
        row.units = context.toolies.shown_units(row.pid);
        results_.these_samples += row;
    }
    results_.cur_log_points.start(static_cast<int>(results_.these_samples.size()));
    watching->set_changed();
}

// What is shown of the run before must be of this vehicle, its set, and the units in force.
bool actions::results_still_fit() {
    if (results_.mode == 0 || results_.veh_id != state.cur_veh_id ||
        results_.metric != (context.toolies.units() == unit_system::metric))
        return false;
    return results_.mode != op_log_run || results_.pid_logitems_list == log_run_set();
}

obd_group actions::engine_ecu() {
    if (state.available_pids.isEmpty())
        state.available_pids = context.toolies.grab_pids_available();
    if (state.available_pids.isEmpty())
        return {QStringLiteral("48xx10"), {}};
    return state.available_pids.at(context.toolies.findEngineEcuIdx(state.available_pids));
}

void actions::addEngECU_toPidList() {
    const QString header = engine_ecu().header;
    if (results_.mode == op_log_run && !own_pids) {
        // The initialisation rewrites the stored set when it finds another car.
        if (const QStringList stored = log_run_set(); stored != results_.pid_logitems_list)
            take_set(stored);
        if (QStringList named = state.sample_pids; name_ecu(named, header))
            context.toolies.save_pids_2_sample_prefs(named);
    }
    name_ecu(results_.pid_logitems_list, header);
    for (qsizetype i = 0; i < results_.these_samples.size(); ++i)
        results_.these_samples[i].item = results_.pid_logitems_list.at(i);
}

// --- start and end -------------------------------------------------------------------------------------

void actions::runLogs() {
    if (is_running())
        return end_run();
    begin_run();
}

void actions::begin_run() {
    results_.sample_cnt = 0;
    results_.log_sample_cnt = 0;
    results_.is_stored = false;
    results_.log_id = -1;
    if (defaults.boolean(QStringLiteral("BV_log_runs"), false)) { // a missing key stores nothing
        storing.create_row(results_.mode, state.cur_veh_id);
        storing.work_out_log_file(results_.mode, results_.metric);
        results_.is_stored = storing.is_on();
        results_.log_id = storing.log_id();
    }
    run_a_log();
}

void actions::run_a_log() {
    rework_gui_objects();
    sampling = sampling_run();
    sampling.keep_logging = true;
    cur_reply_cp.clear();
    context.begin(results_.mode);
    results_.times.run_begins();
    watching->run_started();
    set_status_msg(QStringLiteral("Starting run log"));
    busy = true;
    context.view.show_busy(true);
    context.start();
}

void actions::stop() {
    context.link.stop_opening();
    leave_cur_op_gracefully(QStringLiteral("Stopped"));
}

void actions::end_run() {
    if (context.link.is_reconnecting())
        context.link.stop_opening(); // else it would be tried again
    leave_cur_op_gracefully(QStringLiteral(""));
}

task_controller::link_loss actions::on_link_lost() {
    if (!is_running() || results_.sample_cnt == 0)
        return link_loss::ends;
    if (!std::exchange(sampling.is_resuming, true))
        mark_gap();
    begin_anew();
    return link_loss::goes_on;
}

// From the first PID of the set, with the adapter initialised first.
void actions::begin_anew() {
    sampling.cur_log_idx = 0;
    sampling.cur_log_set.clear();
    sampling.headers_asked = false;
    cur_reply_cp.clear();
    state.pid_loop_active = -1;
    state.pid_loop_phase = -1;
    state.no_confirm_count = 0;
    state.obd_msgs.clear();
    state.cur_task = results_.mode;
    state.cur_step = 0;
}

// The sweep under way is dropped: its row, and a line of the log, are without values.
void actions::mark_gap() {
    const auto columns = static_cast<int>(results_.these_samples.size());
    for (int column = 0; column < columns; ++column) {
        results_.these_samples[column].value = no_reply;
        results_.these_samples[column].latest = qQNaN();
        add_item_to_log_vector(results_.cur_log_points, no_reply, column);
        watching->sample_arrived(column);
    }
    add_item_to_log_vector(results_.cur_log_points, QString(), -1);
    storing.store_gap(QStringList(columns, no_reply).join(u','));
}

void actions::leave_cur_op_gracefully(const QString& status) {
    if (sampling.is_resuming && context.link.try_again_later())
        return begin_anew(); // neither adapter nor car answers yet
    context.link.stop_timers();
    context.link.abandon_command();
    if (!status.isEmpty())
        set_status_msg(status);
    hide_busy();
    context.view.show_toast(QStringLiteral(""));
    state.pid_loop_active = -1;
    state.pid_loop_phase = -1;
    state.cur_step = idle;
    state.no_confirm_count = 0;
    state.obd_msgs.clear();
    const bool was_running = std::exchange(sampling, {}).keep_logging;
    storing.end();
    if (!was_running)
        return;
    results_.times.run_ends();
    context.view.reload(QStringLiteral("operation"));
    watching->run_ended();
}

void actions::hide_busy() {
    if (std::exchange(busy, false))
        context.view.show_busy(false);
}

actions::zoomed actions::zoom(double slider) const {
    if (slider >= 1)
        return {-1, QStringLiteral("All sampling points")};
    const auto rows = static_cast<double>(results_.cur_log_points.rows());
    const qsizetype points = slider <= 0 ? 20 : std::max<qsizetype>(2, static_cast<qsizetype>(slider * rows));
    return {points, fill(QStringLiteral("Charting last %d sampling points"), {QString::number(points)})};
}

// --- what the link tells -------------------------------------------------------------------------------

void actions::work_current_task(const QString& status) {
    if (!is_running())
        return;
    if (context.link.is_redo()) {
        sampling_machine* machine = machine_of(state.cur_task);
        return machine ? machine->redo() : context.link.send_again();
    }
    if (!status.isEmpty())
        set_status_msg(status);
    run_machine();
}

void actions::run_machine() {
    if (state.cur_task == op_initialise)
        connector.run(cur_reply_cp);
    else if (sampling_machine* machine = machine_of(state.cur_task))
        machine->run(cur_reply_cp);
}

sampling_machine* actions::machine_of(int task) {
    switch (task) {
    case op_log_run: return &log_run;
    case op_fuel: return &fuel;
    case op_boost: return &boost;
    case op_o2_layout: return &o2_layout;
    default: return nullptr;
    }
}

void actions::handleOBDRcvdMsg(const QString& reply) {
    if (!is_running())
        return;
    cur_reply_cp = reply;
    sampling.is_resuming = sampling.is_resuming && context.link.is_reconnecting();
    if (state.pid_loop_active == 16)
        pid_loop.l_inner_process_pid_support(reply);
    else
        run_machine();
    if (state.cur_task != op_initialise)
        hide_busy();
}

bool actions::connect_first() {
    if (state.adapter_ready)
        return false;
    state.cur_task = op_initialise;
    state.cur_step = 0;
    connector.run(QString());
    return true;
}
