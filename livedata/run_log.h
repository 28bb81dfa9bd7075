#pragma once

#include "base/app_paths.h"
#include "base/timers.h"
#include "persistence/stored_marks.h"
#include "persistence/stored_moments.h"
#include "persistence/stored_positions.h"

#include <QFile>
#include <functional>

namespace brivant {

// What a run leaves behind while the logging of runs is on: a row of LOGGIES with one row of LOGGIES_DATA a
// stored sweep, and a session file, which stays empty: the lines go to the database. A rate of N seconds
// thins what is stored: the first complete sweep, then the first one after each N seconds. What is missing,
// the sweeps that could not be stored among it, leaves a gap: one line without values.
class run_log {
public:
    // All of it outlives the log.
    run_log(database& store, timers& time_source, const app_paths& its_paths);
    ~run_log();

    // Seconds; -1, and anything below 1, stores every sweep. Counts from the next stored sweep on.
    void set_rate(int seconds);

    // The run's header in the database; nothing when that cannot be written: see problem().
    void create_row(int operation, int veh_id);
    // While nothing is stored, the sweeps of so many latest seconds are kept; none are of another run.
    void keep(int seconds);
    // The log that create_row() made begins with what is kept before this moment of the run.
    void begin_with_kept(double now_ms, qint64 started_utc_ms);
    // It begins at this moment of the run.
    void begin_at(double ms, qint64 started_utc_ms);
    // A line of a run that was not stored when it came.
    struct kept_line {
        QString line;
        sweep_moment when;
        bool is_gap = false;
        std::optional<geo_position> where = std::nullopt;
    };
    // All of them or none; behind begin_at(). False when they could not be stored.
    bool store_lines(const QList<kept_line>& lines);
    // The session file of the operation.
    void work_out_log_file(int operation, bool metric);
    // A sweep is complete: its line is stored when it is its turn. True when it was.
    // `started_utc_ms`: when the run began to ask. `where`: the position is stored with the sweep.
    bool sweep_complete(const QString& line, qint64 started_utc_ms, const sweep_moment& when,
                        const std::optional<geo_position>& where = {});
    // True when the sweep under way is one to be stored.
    bool stores_this_sweep() const { return g_sample_rate == -1 || log_now_delayed; }
    // Sweeps of so many columns are missing from here on: a gap, whatever the rate, behind the first sweep.
    // `ms`: when it began, since the run's start.
    void store_gap(int columns, double ms);
    // A person's word at a moment of the run; one before the log's begin is left out. False when it could not
    // be stored: the database tells why.
    bool store_mark(const timed_mark& mark);
    // The run has ended: its header gets the final text, or goes away when no line was stored.
    void end();

    // Whether the run is one to be stored, and has its place in the database.
    bool is_on() const { return cur_log_DB_id > 0; }
    int log_id() const { return cur_log_DB_id; }
    int sweeps_stored() const { return log_sample_cnt - gaps; }
    // Sweeps of the run that were to be stored and could not be.
    int sweeps_lost() const { return lost; }
    // Why sweeps of the run were not stored, and how many; "" while all are.
    QString problem() const;

    // Called when a delayed sample was stored.
    std::function<void()> saved_delayed_sample;
    // Called when storing begins to fail, once.
    std::function<void()> storing_failed;

private:
    void sample_delayed() { log_now_delayed = true; }
    void keep_line(const kept_line& line);
    bool store(const QString& line, const sweep_moment& when, const std::optional<geo_position>& where = {});
    bool store_line_of(sqlite_connection& connection, const kept_line& one);
    bool store_owed_gap(int columns);
    void owe_gap(double ms);
    void fail();
    QString final_info() const;

    database& db;
    timers& clock;
    const app_paths& paths;

    int cur_log_DB_id = -1;
    int log_sample_cnt = 0; // lines stored so far, and the next line's number
    int gaps = 0;           // of them those without a sweep
    int lost = 0;
    bool owes_gap = false; // sweeps are missing behind the last line
    double gap_ms = 0;     // from here on
    bool has_moments = false;
    int kept_ms = 0;
    QList<kept_line> kept;
    double begun_ms = 0; // the log's begin within the run
    qint64 start_utc_ms = 0;
    int g_sample_rate = -1;
    bool log_now_delayed = false;
    timer_handle sample_timer;
    bool has_positions = false; // a stored sweep has one
    QFile log_out_stream;
    QString what_is_wrong;
};

} // namespace brivant
