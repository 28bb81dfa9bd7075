#include "livedata/sampling_talk.h"

#include "base/string_table.h"
#include "charts/outward_rounding.h"
#include "livedata/sample_set.h"
#include "livedata/second_value.h"
#include "obd/ecu_names.h"
#include "obd/reply_text.h"
#include "obd/supported_pids.h"

#include <QDateTime>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

const QString fuel_economy = QStringLiteral("E4");
const QString boost_pressure = QStringLiteral("E5");
const QString manifold_pressure = QStringLiteral("0B");
const QString outside_pressure = QStringLiteral("33");
constexpr int car_gone_ms = 5 * 60'000;
constexpr int refused_for_good = 2;     // times
constexpr qint64 refused_is_asked = 10; // every so many sweeps

bool is_refused(const reply& what_came, const QString& header) {
    const reply said(what_came.raw());
    const ecu_said* ecu = said.ecu(header);
    if (!ecu && !said.ecus().isEmpty())
        ecu = &said.ecus().first();
    const auto why = ecu ? ecu->refused() : std::nullopt;
    return why ? !why->is_pending() : said.text().startsWith(QLatin1String("7F01"));
}

} // namespace

QString requested_pid(const QString& pid) {
    return pid == boost_pressure ? manifold_pressure : pid;
}

bool is_worked_out(const QString& pid) {
    return pid == fuel_economy;
}

void add_item_to_log_vector(sample_matrix& vector, const QString& this_item_val, int this_idx) {
    if (this_idx == -1)
        vector.add_row();
    else
        vector.set(this_idx, this_item_val);
}

sampling_talk::sampling_talk(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies,
                             screen& its_view, timers& time_source, live_results& its_results,
                             const app_paths& its_paths)
    : car_talk(its_car, its_link, its_toolies, its_view), results(its_results),
      storing(its_toolies.store(), time_source, its_paths) {}

void sampling_talk::started() {
    car_is_silent = false;
    is_first_reply = true;
    headers_asked = false;
    sweeps_begun = 0;
    end_gap();
    results.times.clear();
    results.pace = {};
    results.moments.clear();
}

// --- before the first request ------------------------------------------------------------------------------

talk sampling_talk::ready_to_ask(QString opening) {
    co_await ready(opening);
    if (!link.adapter().headers_shown() && !std::exchange(headers_asked, true)) {
        // One that refuses is not asked again; its replies are taken without.
        sent_command headers_on = command_of(QStringLiteral("AT H1\r"), QStringLiteral("OK"), false);
        headers_on.why = sent_command::purpose::on_its_own;
        co_await send(headers_on);
        view.show_busy(false);
        co_await ready(opening);
    }
}

talk sampling_talk::ready_to_sample(QString opening) {
    co_await ready_to_ask(opening);
    addEngECU_toPidList();
}

void sampling_talk::fit_set(const QStringList& by_standard, const QString& demanded) {
    const obd_group engine = engine_ecu();
    if (results.sample_cnt > 0 || engine.pidSet.isEmpty()) // a run that goes on keeps its columns
        return;
    QStringList set = set_of_mode(results.mode);
    if (toolies.standard_reading())
        set += by_standard;
    set.removeIf([&](const QString& pid) {
        const bool is_own = pid == fuel_economy || pid == boost_pressure;
        return !is_own && !demanded.contains(pid) && !engine.pidSet.contains(pid);
    });
    name_ecu(set, engine.header);
    if (set != results.pid_logitems_list)
        take_set(set);
}

void sampling_talk::make_sure_all_are_supported() {
    if (results.sample_cnt > 0)
        return;
    for (const QString& item : std::as_const(results.pid_logitems_list)) {
        const std::optional<sample_item> entry = split_sample_item(item);
        if (!entry || entry->pid == fuel_economy)
            continue;
        if (!isPID_in_avail_pid_list(state.available_pids(), {requested_pid(entry->pid), entry->header},
                                     link.adapter().cur_protocol())) {
            show("One or more PIDs needed not available for this vehicle");
            throw left{};
        }
    }
}

obd_group sampling_talk::engine_ecu() {
    if (state.available_pids().isEmpty())
        current_car.make_current(state.cur_veh_id(), toolies.grab_pids_available());
    if (state.available_pids().isEmpty())
        return {QStringLiteral("48xx10"), {}};
    return state.available_pids().at(toolies.findEngineEcuIdx(state.available_pids()));
}

void sampling_talk::begin_to_ask() {
    results.times.run_begins();
    const qint64 now = link.time_source().microseconds();
    if (results.moments.started_utc_ms() < 0)
        results.moments.run_begins(now, QDateTime::currentMSecsSinceEpoch());
    results.moments.asks(now);
    results.cur_log_points.begins(results.moments.sweep_ms());
}

bool sampling_talk::tells(const QString& ecu, const QString& pid) const {
    const int protocol = link.adapter().cur_protocol();
    return std::any_of(state.available_pids().begin(), state.available_pids().end(),
                       [&](const obd_group& group) {
                           return same_ecu(group.header, ecu, protocol) && group.pidSet.contains(pid);
                       });
}

car_talk::asking sampling_talk::ask_pid(const QString& pid, bool is_asked_again, bool is_sent_once) {
    const QString request = QStringLiteral("01 ") + pid;
    const bool shown = link.adapter().headers_shown();
    begin_to_ask();
    return send({.text = request + u'\r',
                 .expectedReply = shown ? QString() : positive_reply_of(request),
                 .has_header = shown,
                 .is_asked_again = is_asked_again,
                 .is_sent_once = is_sent_once,
                 .why = sent_command::purpose::on_its_own});
}

car_talk::asking sampling_talk::ask_row(int index) {
    return ask_pid(requested_pid(row(index).pid), false, row(index).refusals >= refused_for_good);
}

// A sweep asks for something, so that it takes its time.
bool sampling_talk::is_turn_of(int index) const {
    const QList<sample_row>& rows = results.these_samples;
    const auto is_asked = [](const sample_row& its_row) { return !is_worked_out(its_row.pid); };
    const auto is_refused = [&](const sample_row& its_row) {
        return !is_asked(its_row) || its_row.refusals >= refused_for_good;
    };
    return !is_refused(rows.at(index)) || sweeps_begun % refused_is_asked == 0 ||
           (std::none_of(rows.begin(), rows.begin() + index, is_asked) &&
            std::all_of(rows.begin(), rows.end(), is_refused));
}

// --- the reply ---------------------------------------------------------------------------------------------

QString sampling_talk::data_of_reply(const reply& what_came, const QString& pid,
                                     const QString& header) const {
    if (what_came.text().isEmpty() || what_came.holds_nothing())
        return no_reply;
    const ecu_said* ecu = what_came.ecu(header);
    if (!ecu && !what_came.ecus().isEmpty())
        ecu = &what_came.ecus().first();
    const bool by_line = !what_came.headers_shown() || what_came.protocol() == -1;
    const QString data = by_line ? what_came.lines().value(0) : ecu ? ecu->value_of_first_line() : QString();
    const QString answer = QStringLiteral("41") + pid;
    return data.size() >= answer.size() + 2 && data.startsWith(answer) && is_hex(data) ? data : no_reply;
}

QString sampling_talk::data_of_reply(const reply& what_came, int index) {
    const sample_row& its_row = row(index);
    return came_for(index,
                    data_of_reply(what_came, requested_pid(its_row.pid), its_row.item.section(u'|', 1)),
                    what_came);
}

QString sampling_talk::came_for(int index, QString data, const reply& what_came) {
    if (std::exchange(is_first_reply, false))
        view.show_busy(false);
    if (what_came.text().isEmpty()) {
        link.set_up_next_time(false); // the next run initialises it again
        throw left{QStringLiteral("Timed out** .. Try again")};
    }
    sample_row& its_row = row(index);
    if (data != no_reply) {
        its_row.refusals = 0;
        const qint64 moment = link.moments().middle();
        results.moments.came(index, columns(), moment);
        results.cur_log_points.came(index, results.moments.milliseconds(moment));
        data.replace(2, 2, its_row.pid); // the PID alone: a data byte may be the same
    } else if (is_refused(what_came, its_row.item.section(u'|', 1))) {
        ++its_row.refusals;
    }
    results.pace.note(link.moments());
    if (!what_came.is_none() || link.timeouts() == 0) // else the status tells of the time-out
        show(fill(QStringLiteral("Got proper reply: ( %@)"), {data}));
    return data;
}

void sampling_talk::take(int index, const QString& data) {
    sample_row& its_row = row(index);
    read_row(results, index, data, toolies);
    note_extremes(its_row, its_row.latest);
    output_item(index, data);
    if (its_row.pid == outside_pressure && row(0).pid == boost_pressure && row(0).value != no_reply)
        read_row(results, 0, results.cur_log_points.body(results.cur_log_points.rows() - 1, 0), toolies);
}

void sampling_talk::tell_sensor(int index) {
    if (cur_op() == op_o2_layout)
        observer().set_sensor_value(index, QString::number(row(index).latest, 'f', 3));
}

void sampling_talk::output_item(int index, const QString& data) {
    add_item_to_log_vector(results.cur_log_points, data, index);
    observer().sample_arrived(index);
}

// The first value is rounded outward, so that it does not lie on the edge.
void sampling_talk::note_extremes(sample_row& its_row, double value) {
    if (!std::isfinite(value))
        return;
    const auto text = [](double number) { return QString::number(number, 'f', 6); };
    if (its_row.max == QLatin1String("max"))
        its_row.max = text(round_outward(value, true));
    else if (value > its_row.max.toDouble())
        its_row.max = text(value);
    if (its_row.min == QLatin1String("min"))
        its_row.min = text(round_outward(value, false));
    else if (value < its_row.min.toDouble())
        its_row.min = text(value);
}

// --- the sweep ---------------------------------------------------------------------------------------------

void sampling_talk::check_the_run() {
    if (!is_running())
        throw left{}; // the view has ended it
    if (!link.adapter().adapter_ready())
        throw link_lost{.status = results.sample_cnt == 0 ? adapter_was_reset : QString()};
}

void sampling_talk::end_of_sweep(const QStringList& bodies) {
    const bool is_empty =
        std::all_of(bodies.begin(), bodies.end(), [](const QString& body) { return body == no_reply; });
    ++sweeps_begun;
    tell_silence(is_empty && link.timeouts() == 0); // a time-out tells of itself
    if (is_empty) {
        mark_gap();
    } else {
        end_gap();
        add_item_to_log_vector(results.cur_log_points, QString(), -1);
        ++results.sample_cnt;
        results.times.sweep_complete(bodies.size() - bodies.count(no_reply));
        const QString cur_log_set = bodies.join(u',');
        take_sweep(cur_log_set, results.moments.taken());
        results.log_sample_cnt = storing.sweeps_stored();
        observer().sweep_completed();
    }
    check_the_run();
    if (car_is_gone)
        throw link_lost{.status = QStringLiteral("The car has not answered for five minutes")};
}

void sampling_talk::take_sweep(const QString& line, const sweep_moment& when) {
    results.position = where(when.ms);
    storing.sweep_complete(line, results.moments.started_utc_ms(), when, results.position);
}

std::optional<geo_position> sampling_talk::where(double sweep_ms) const {
    const auto told = positions ? positions->latest() : std::nullopt;
    if (!told)
        return std::nullopt;
    geo_position at = told->where;
    at.offset_ms = results.moments.milliseconds(told->told_us) - sweep_ms;
    return at;
}

void sampling_talk::tell_silence(bool is_silent) {
    if (std::exchange(car_is_silent, is_silent) == is_silent)
        return;
    handleOBDToast(
        is_silent
            ? QStringLiteral("The adapter answers, the car does not.\n\nIs the ignition on? The run goes on, "
                             "and shows values as soon as they come.")
            : QString());
}

void sampling_talk::begin_anew() {
    results.moments.taken();
    headers_asked = false;
}

void sampling_talk::mark_gap() {
    for (int column = 0; column < columns(); ++column) {
        row(column).value = no_reply;
        row(column).latest = qQNaN();
        output_item(column, no_reply);
        if (cur_op() == op_o2_layout)
            observer().set_sensor_value(column, QStringLiteral("nan"));
    }
    results.position.reset();
    const sweep_moment when = results.moments.taken();
    if (std::exchange(is_in_gap, true))
        return;
    add_item_to_log_vector(results.cur_log_points, QString(), -1);
    storing.store_gap(columns(), when.ms);
    results.times.gap();
    until_car_is_gone = link.time_source().one_shot(car_gone_ms, [this] {
        car_is_gone = true;
        observer().car_gone();
    });
    observer().gap_begun();
}

void sampling_talk::end_gap() {
    is_in_gap = car_is_gone = false;
    until_car_is_gone.reset();
}

} // namespace brivant
