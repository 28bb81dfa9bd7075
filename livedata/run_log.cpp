#include "livedata/run_log.h"

#include "base/console_log.h"
#include "base/shared_types.h"
#include "base/string_table.h"
#include "operations/operation_code.h"
#include "persistence/log_files.h"
#include "persistence/sqlite_connection.h"
#include "persistence/stored_logs.h"

#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr qsizetype most_kept = 100'000; // sweeps

QString log_type_of(int operation) {
    switch (operation) {
    case op_fuel: return QStringLiteral("Fuel");
    case op_boost: return QStringLiteral("Boost");
    case op_o2_layout: return QStringLiteral("O2");
    default: return QStringLiteral("Log");
    }
}

} // namespace

run_log::run_log(database& store, timers& time_source, const app_paths& its_paths)
    : db(store), clock(time_source), paths(its_paths) {}

run_log::~run_log() {
    end();
}

void run_log::set_rate(int seconds) {
    g_sample_rate = seconds >= 1 ? seconds : -1;
}

void run_log::create_row(int operation, int veh_id) {
    end();
    log_sample_cnt = 0;
    gaps = lost = 0;
    owes_gap = false;
    begun_ms = 0;
    log_now_delayed = true;
    has_positions = false;
    what_is_wrong.clear();
    if (!db.init_DB())
        return fail();
    has_moments = db.add_own_parts(); // else the run is stored as before
    db.begin_lines(); // before the header: one without lines is a leftover when no run is marked
    cur_log_DB_id = db.add_2_LOG_DB(log_type_of(operation), veh_id, info_of_open_run);
    if (cur_log_DB_id > 0)
        return;
    fail();
    db.end_lines();
}

void run_log::work_out_log_file(int operation, bool metric) {
    log_out_stream.close();
    log_out_stream.setFileName(work_out_log_fname_for_mode(paths.application_folder, operation, metric,
                                                           QDateTime::currentDateTime()) +
                               QStringLiteral(".gol"));
    // The hour of its name is one of twelve: it may be there.
    if (!log_out_stream.open(QIODevice::Append))
        console_log(QStringLiteral("work_out_log_file::%1").arg(log_out_stream.errorString()));
}

void run_log::keep(int seconds) {
    kept_ms = 1000 * seconds;
    kept.clear();
}

void run_log::keep_line(const kept_line& line) {
    if (kept_ms == 0)
        return;
    kept += line;
    while (kept.size() > most_kept || kept.first().when.ms < line.when.ms - kept_ms)
        kept.removeFirst();
}

void run_log::begin_with_kept(double now_ms, qint64 started_utc_ms) {
    while (!kept.isEmpty() && (kept.first().is_gap || kept.first().when.ms < now_ms - kept_ms))
        kept.removeFirst();
    const QList<kept_line> lines = std::exchange(kept, {});
    begin_at(lines.isEmpty() ? now_ms : lines.first().when.ms, started_utc_ms);
    store_lines(lines);
}

void run_log::begin_at(double ms, qint64 started_utc_ms) {
    begun_ms = std::floor(ms);
    start_utc_ms = started_utc_ms + static_cast<qint64>(begun_ms);
}

bool run_log::store_lines(const QList<kept_line>& lines) {
    const int stored_before = log_sample_cnt;
    const int gaps_before = gaps;
    if (!is_on() || db.change([&](sqlite_connection& connection) {
            return std::all_of(lines.begin(), lines.end(),
                               [&](const kept_line& one) { return store_line_of(connection, one); });
        }))
        return is_on();
    log_sample_cnt = stored_before;
    gaps = gaps_before;
    lost += static_cast<int>(lines.size());
    fail();
    return false;
}

// With the time at which it came.
bool run_log::store_line_of(sqlite_connection& connection, const kept_line& one) {
    const auto at_its_time = QStringLiteral("UPDATE LOGGIES_DATA SET time_stamp=datetime(%1, 'unixepoch') "
                                            "WHERE rowid=(SELECT MAX(rowid) FROM LOGGIES_DATA)");
    gaps += one.is_gap;
    const qint64 utc_s = (start_utc_ms + static_cast<qint64>(one.when.ms - begun_ms)) / 1000;
    return store(one.line, one.when, one.where) && connection.execute(at_its_time.arg(utc_s));
}

bool run_log::sweep_complete(const QString& line, qint64 started_utc_ms, const sweep_moment& when,
                             const std::optional<geo_position>& where) {
    if (!is_on())
        keep_line({line, when, false, where});
    if (!is_on() || !stores_this_sweep())
        return false;
    if (log_sample_cnt == 0)
        start_utc_ms = started_utc_ms + static_cast<qint64>(begun_ms);
    const bool stored = store_owed_gap(static_cast<int>(line.count(u',')) + 1) && store(line, when, where);
    if (!stored) {
        ++lost;
        owe_gap(when.ms);
    }
    if (log_now_delayed && g_sample_rate != -1) {
        sample_timer = clock.one_shot(g_sample_rate * 1000, [this] { sample_delayed(); });
        log_now_delayed = false;
        if (stored && saved_delayed_sample)
            saved_delayed_sample();
    }
    return stored;
}

void run_log::owe_gap(double ms) {
    if (!owes_gap)
        gap_ms = ms;
    owes_gap = log_sample_cnt > 0;
}

void run_log::store_gap(int columns, double ms) {
    owe_gap(ms);
    if (is_on())
        store_owed_gap(columns);
    else
        keep_line({QStringList(columns, no_reply).join(u','), {ms, {}}, true});
}

bool run_log::store_owed_gap(int columns) {
    if (!owes_gap)
        return true;
    owes_gap = !store(QStringList(columns, no_reply).join(u','), {gap_ms, {}});
    gaps += owes_gap ? 0 : 1;
    return !owes_gap;
}

// A line, its moment and its position are stored as one.
bool run_log::store(const QString& line, const sweep_moment& when, const std::optional<geo_position>& where) {
    const bool is_stored = db.change([&](sqlite_connection&) {
        return db.append_2_LOG_DB(line, position_text(where), log_sample_cnt, cur_log_DB_id) > 0 &&
               (!has_moments ||
                (store_moment(db, cur_log_DB_id, log_sample_cnt, {when.ms - begun_ms, when.offsets}) &&
                 (!where || store_position(db, cur_log_DB_id, log_sample_cnt, *where)) &&
                 (log_sample_cnt > 0 || store_run_start(db, cur_log_DB_id, start_utc_ms))));
    });
    if (!is_stored) {
        fail();
        return false;
    }
    has_positions |= where.has_value();
    ++log_sample_cnt;
    return true;
}

bool run_log::store_mark(const timed_mark& mark) {
    return mark.ms < begun_ms ||
           (is_on() && brivant::store_mark(db, cur_log_DB_id, {mark.ms - begun_ms, mark.text}));
}

void run_log::fail() {
    const bool told = !what_is_wrong.isEmpty();
    what_is_wrong = db.problem();
    if (!told && storing_failed)
        storing_failed();
}

QString run_log::problem() const {
    if (lost == 0)
        return what_is_wrong;
    return QStringLiteral("%1 %2 could not be stored. %3")
        .arg(lost)
        .arg(lost == 1 ? QStringLiteral("sweep") : QStringLiteral("sweeps"), what_is_wrong);
}

void run_log::end() {
    sample_timer.reset();
    log_out_stream.close();
    if (!is_on())
        return;
    const int log_id = std::exchange(cur_log_DB_id, -1);
    if (log_sample_cnt == 0)
        delete_empty_sampling_log(db, log_id);
    else
        finish_sampling_log(db, log_id, final_info());
    db.end_lines();
}

QString run_log::final_info() const {
    return info_of_run(log_sample_cnt - gaps, has_positions, g_sample_rate);
}

} // namespace brivant
