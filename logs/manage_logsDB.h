#pragma once

#include "base/app_paths.h"
#include "base/car_state.h"
#include "base/screen.h"
#include "logs/log_filter.h"
#include "persistence/row_cursor.h"
#include "persistence/stored_logs.h"

#include <QStringList>
#include <functional>
#include <memory>

namespace brivant {

// The log browser without its widgets: the list of the stored logs of the current vehicle, and what is done
// with the selected ones. The list is read a block of rows at a time, so that one of any length does not hold
// up the window; likewise a deletion. Everything referred to outlives it.
class manage_logsDB {
public:
    manage_logsDB(const car_state& its_car, database& store, const app_paths& its_paths, screen& its_view);

    const log_filter& filter() const { return chosen; }
    // Take effect with the next loadLogs().
    void choose_kind(int segment) { chosen.log_kind = segment; }
    void choose_recency(int place) { chosen.this_log_filter = place; }

    // Empties the list and begins to read it anew; shows the status line. False when the database cannot be
    // read: it is then said in a message.
    bool loadLogs();
    // Reads up to `rows` further logs. True while there may be more; the status line tells the count at the
    // end.
    bool load_more(int rows);
    bool is_loading() const { return rows_left != nullptr; }
    void stop_loading() { rows_left.reset(); }

    // The rows, each with LOG_ID, VEH_ID, LOG_TYPE, INFO and time_stamp, "|" between them.
    const QStringList& logs() const { return logsArray; }
    log_header log_at(qsizetype row) const;
    // The number of the newest log of the vehicle, whatever the filters hide; 0 when it has none.
    int total_no_of_logs() const { return total; }
    // The name of the vehicle as it was when the list was read.
    const QString& vehicle_name() const { return vehicle; }
    // "12 Logs".
    QString count_text() const;

    // Asks, and calls `yes` when the logs are to be deleted. A selection of none is told.
    void deleteItems(const QList<log_header>& selectedLogs, std::function<void()> yes);
    // The files of the logs that exist: those of their names in the application folder, else their exports.
    // `missing` is how many logs have none.
    QStringList copied_files(const QList<log_header>& selectedLogs, int& missing) const;
    // The folder of the exports, "" when there is none yet.
    QString output_folder() const;

private:
    void show_filtered_status();
    QString print_filtered_status(const QString& this_filter, qsizetype log_cnt, int total_logs) const;
    QStringList files_of(const log_header& log) const;
    QString name_of_vehicle();

    const car_state& state;
    database& db;
    const app_paths paths;
    screen& view;

    log_filter chosen;
    QStringList logsArray;
    int total = 0;
    QString vehicle;
    std::unique_ptr<row_cursor> rows_left;
};

} // namespace brivant
