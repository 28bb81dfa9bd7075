#include "livedata/actions.h"

#include <algorithm>
#include <cmath>

// What a run stores: as it goes on, from a crossing on, or at its end; and its marks.

namespace brivant {

void actions::begin_log() {
    storing.create_row(results.mode, state.cur_veh_id());
    storing.work_out_log_file(results.mode, results.metric);
    results.is_stored = storing.is_on();
    results.log_id = storing.log_id();
}

void actions::take_sweep(const QString& line, const sweep_moment& when) {
    begin_log_when_triggered(when.ms);
    sampling_talk::take_sweep(line, when);
    end_log_when_triggered();
}

bool actions::is_met(const pid_limit& limit) const {
    return std::any_of(results.these_samples.begin(), results.these_samples.end(),
                       [&limit](const sample_row& row) {
                           return row.pid == limit.pid && std::isfinite(row.latest) &&
                                  (limit.is_above ? row.latest > limit.value : row.latest < limit.value);
                       });
}

// The set may be another than when the trigger was chosen. That of the oxygen sensors is told by the car.
void actions::tell_trigger_without_pid() {
    if (!results.trigger || results.mode == op_o2_layout)
        return;
    const QString& pid = results.trigger->when.pid;
    if (std::none_of(results.these_samples.begin(), results.these_samples.end(),
                     [&pid](const sample_row& row) { return row.pid == pid; }))
        view.show_message(QString(),
                          QStringLiteral("Nothing of this run will be stored: it does not sample %1 (%2), "
                                         "whose crossing is waited for.")
                              .arg(toolies.get_pid_name_with_pid(pid).trimmed(), pid));
}

void actions::begin_log_when_triggered(double now_ms) {
    if (!results.trigger || storing.is_on())
        return;
    const bool is_true = is_met(results.trigger->when);
    if (is_true && is_armed && storing.sweeps_lost() == 0) { // else what was lost would not be told
        begin_log();
        storing.begin_with_kept(now_ms, results.moments.started_utc_ms());
        for (const timed_mark& mark : std::as_const(results.marks))
            storing.store_mark(mark);
        set_status_msg(QStringLiteral("Stored as log %1 since %2")
                           .arg(results.log_id)
                           .arg(text_of(results.trigger->when)));
    }
    is_armed = !is_true;
}

void actions::end_log_when_triggered() {
    if (!results.trigger || !results.trigger->until || !storing.is_on() || !is_met(*results.trigger->until))
        return;
    storing.end();
    is_armed = !is_met(results.trigger->when);
    set_status_msg(
        QStringLiteral("Log %1 ended by %2").arg(results.log_id).arg(text_of(*results.trigger->until)));
}

void actions::put_mark(const QString& word) {
    if (!is_running() || results.moments.started_utc_ms() < 0)
        return set_status_msg(QStringLiteral("No mark: the run has not begun to ask the car"));
    if (results.marks.size() >= most_marks)
        return set_status_msg(QStringLiteral("No mark: a run has at most %1").arg(most_marks));
    const timed_mark mark{results.moments.milliseconds(link.time_source().microseconds()),
                          text_of_mark(word, results.marks.size() + 1)};
    if (storing.is_on() && !storing.store_mark(mark))
        return set_status_msg(QStringLiteral("The mark could not be stored. ") + toolies.store().problem());
    results.marks += mark;
    set_status_msg(QStringLiteral("Marked at %1 s: %2").arg(mark.ms / 1000, 0, 'f', 1).arg(mark.text));
}

bool actions::can_store_run() const {
    return !is_running() && !is_storing_run() && !results.is_stored && results.sample_cnt > 0 &&
           results.moments.started_utc_ms() >= 0 && results.cur_log_points.rows() > 1;
}

void actions::store_run() {
    if (!can_store_run())
        return;
    storing.create_row(results.mode, results.veh_id);
    results.is_stored = storing.is_on();
    results.log_id = storing.log_id();
    if (!storing.is_on())
        return set_status_msg(QStringLiteral("The run could not be stored. ") + storing.problem());
    late = std::make_unique<late_log>(storing, results);
    store_slice();
}

void actions::store_slice() {
    if (!late->step())
        return end_late_log();
    results.log_sample_cnt = storing.sweeps_stored();
    set_status_msg(QStringLiteral("Storing the run: %1 %").arg(late->percent()));
    next_slice = link.time_source().one_shot(0, [this] { store_slice(); });
}

void actions::end_late_log() {
    next_slice.reset();
    const int percent = late->percent();
    results.log_sample_cnt = storing.sweeps_stored();
    results.is_stored = results.log_sample_cnt > 0;
    late.reset();
    if (!storing.problem().isEmpty())
        set_status_msg(storing.problem());
    else if (percent < 100)
        set_status_msg(
            QStringLiteral("Only the first %1 sweeps of the run were stored").arg(results.log_sample_cnt));
    else
        set_status_msg(QStringLiteral("Stored as log %1").arg(results.log_id));
    watching->run_ended();
}

} // namespace brivant
