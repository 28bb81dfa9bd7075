#include "persistence/log_import.h"

#include "base/string_table.h"
#include "formats/timed_csv_reader.h"
#include "obd/readings/body_of_value.h"
#include "persistence/sqlite_connection.h"
#include "persistence/stored_logs.h"
#include "persistence/stored_marks.h"
#include "persistence/stored_moments.h"
#include "persistence/stored_positions.h"

#include <QDateTime>
#include <QFile>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr int rows_a_question = 500;

// As the database writes it.
QString time_stamp(qint64 utc_ms) {
    return QDateTime::fromMSecsSinceEpoch(utc_ms, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// What is stored is rounded, and is to be read again.
bool lies_in_a_run(double ms) {
    return ms >= 0 && ms < longest_run_ms - 1;
}

bool is_possible(const timed_sweep& sweep) {
    return lies_in_a_run(sweep.ms) &&
           std::all_of(sweep.offsets_ms.begin(), sweep.offsets_ms.end(),
                       [](double offset) { return std::isnan(offset) || lies_in_a_run(offset); });
}

bool done(sqlite_statement& statement) {
    const bool is_done = statement.step() == sqlite_statement::stepped::done;
    statement.reset();
    return is_done;
}

} // namespace

bool log_import::take(const QString& path, int veh_id, const std::function<bool(int percent)>& go_on) {
    id = -1;
    with_values = left_out = 0;
    what_is_wrong.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("%1 cannot be read (%2).").arg(path, file.errorString()));
    timed_csv_reader reader(file);
    if (!reader.read_head())
        return fail(path + QStringLiteral(" cannot be imported. ") + reader.problem());
    if (!db.init_DB() || !db.add_own_parts())
        return fail(db.problem());
    const qint64 size = std::max<qint64>(1, file.size());
    const bool is_taken = db.change([&](sqlite_connection& connection) {
        return take_rows(connection, reader, veh_id,
                         [&] { return go_on(static_cast<int>(100 * file.pos() / size)); });
    });
    if (is_taken)
        return true;
    id = -1;
    return fail(!what_is_wrong.isEmpty() ? what_is_wrong
                : !reader.problem().isEmpty()
                    ? path + QStringLiteral(" cannot be imported. ") + reader.problem()
                    : db.problem());
}

bool log_import::take_rows(sqlite_connection& connection, timed_csv_reader& reader, int veh_id,
                           const std::function<bool()>& go_on) {
    const run_head& head = reader.head();
    if (head.start_ms < 0 || head.start_ms >= latest_start_ms)
        return fail(QStringLiteral("The run began before 1970, or thousands of years from now."));
    QStringList pids;
    for (const run_column& column : head.columns)
        pids += column.pid.toUpper();
    body_finder finder(pids, {head.units, head.by_standard}, lists);

    sqlite_statement header(connection, QStringLiteral("INSERT INTO LOGGIES (VEH_ID, LOG_TYPE, INFO, "
                                                       "time_stamp) VALUES (?, 'Log', ?, ?)"));
    if (!header.is_prepared() || !header.bind(1, veh_id) || !header.bind(2, info_of_open_run) ||
        !header.bind(3, time_stamp(head.start_ms)) || !done(header))
        return false;
    id = static_cast<int>(connection.last_row_id());
    sqlite_statement line(connection, QStringLiteral("INSERT INTO LOGGIES_DATA (LOG_ID, DATA, LINE_NUMBER, "
                                                     "time_stamp, DATA2) VALUES (?, ?, ?, ?, ?)"));
    if (!line.is_prepared() || !line.bind(1, id) || !store_run_start(db, id, head.start_ms))
        return false;
    int lines = 0;
    qsizetype marks = 0;
    bool has_positions = false;
    for (auto item = reader.next(); item; item = reader.next()) {
        if (const auto* mark = std::get_if<timed_mark>(&*item)) {
            if (++marks > most_marks || !lies_in_a_run(mark->ms))
                return fail(QStringLiteral("The run has more than %1 marks, or one before it began or years "
                                           "behind it.")
                                .arg(most_marks));
            if (!store_mark(db, id, {mark->ms, text_of_mark(mark->text, marks)}))
                return false;
            continue;
        }
        const timed_sweep& sweep = std::get<timed_sweep>(*item);
        if (!is_possible(sweep))
            return fail(QStringLiteral(
                "A sweep of the run lies before its begin or years behind it, or a value so to its sweep."));
        const QStringList bodies = finder.bodies_of(sweep.values);
        const auto values =
            std::count_if(sweep.values.begin(), sweep.values.end(),
                          [](const std::optional<double>& value) { return value.has_value(); });
        const auto found = bodies.size() - bodies.count(no_reply);
        left_out += values - found;
        with_values += found > 0;
        const qint64 utc_ms = head.start_ms + std::llround(sweep.ms);
        const QList<double> offsets(sweep.offsets_ms.begin(), sweep.offsets_ms.end());
        if (!line.bind(2, bodies.join(u',')) || !line.bind(3, lines) || !line.bind(4, time_stamp(utc_ms)) ||
            !line.bind(5, position_text(sweep.position)) || !done(line) ||
            !store_moment(db, id, lines, {sweep.ms, offsets}) ||
            (sweep.position && !store_position(db, id, lines, *sweep.position)))
            return false;
        has_positions |= sweep.position.has_value();
        if (++lines % rows_a_question == 0 && !go_on())
            return fail(QStringLiteral("Stopped: nothing was imported."));
    }
    if (!reader.problem().isEmpty())
        return false;
    if (with_values == 0)
        return fail(QStringLiteral("The file has no value that a car could have sent."));
    return finish_sampling_log(
        db, id, info_of_run(static_cast<int>(with_values), has_positions, -1) + QStringLiteral("imported"));
}

bool log_import::fail(const QString& sentence) {
    what_is_wrong = sentence;
    return false;
}

} // namespace brivant
