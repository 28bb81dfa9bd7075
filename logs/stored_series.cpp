#include "logs/stored_series.h"

#include "persistence/log_files.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qint64 second = 1000;
constexpr QByteArrayView answer = "41";
constexpr qsizetype pid_end = 4; // "41", then the PID

} // namespace

stored_series::stored_series(database& store, const log_header& log, sample_matrix& into, qsizetype most_rows)
    : matrix(into), limit(most_rows), lines_announced(log.info.section(u' ', 0, 0).toLongLong()),
      start(start_of_run(store, log.id)) {
    is_timed = start.has_value();
    matrix.start(0);
    lines_left = std::make_unique<row_cursor>(store.path(), is_timed ? timed_chunks_statement(log.id)
                                                                     : chunks_statement(log.id));
    if (lines_left->has_failed())
        fail(lines_left->reason());
}

bool stored_series::fail(const QString& reason) {
    what_is_wrong = QStringLiteral("The log cannot be read: %1.").arg(reason);
    lines_left.reset();
    return false;
}

bool stored_series::step(int lines) {
    for (int i = 0; lines_left && i < lines; ++i) {
        if (!lines_left->advance()) {
            if (lines_left->has_failed())
                return fail(lines_left->reason());
            lines_left.reset();
        } else if (row_count >= limit || (row_count > 0 && row_count >= matrix.most_rows())) {
            cut = true;
            lines_left.reset();
        } else {
            begin_row(lines_left->bytes(chunk_data));
            take_time();
            take(lines_left->bytes(chunk_data));
        }
    }
    if (!lines_left) {
        sums.count_rows(matrix);
        end_second(row_count, last_second + 1);
    }
    return lines_left != nullptr;
}

void stored_series::begin_row(QByteArrayView line) {
    if (row_count++ > 0) {
        sums.count_rows(matrix);
        return matrix.add_row();
    }
    const qsizetype items = std::count(line.begin(), line.end(), ',') + 1;
    const int columns = static_cast<int>(std::min(items, most_columns));
    left_out = items - columns;
    column_pids = QStringList(columns);
    sums.start(columns);
    matrix.start(columns);
}

void stored_series::take_time() {
    if (!is_timed)
        return take_seconds(seconds_of_time_stamp(lines_left->bytes(chunk_time_stamp)));
    moment = moment_in(QString::fromUtf8(lines_left->bytes(chunk_ms)),
                       QString::fromUtf8(lines_left->bytes(chunk_offsets)));
    if (moment)
        matrix.begins(moment->ms);
}

void stored_series::take_seconds(qint64 utc) {
    if (utc < 0 || utc <= last_second) // a clock that was set back is waited for
        return;
    if (!start)
        start = utc * second;
    end_second(row_count - 1, utc);
    last_second = utc;
    row_of_second = row_count - 1;
    matrix.begins(static_cast<double>(utc * second - *start));
}

// The lines of the last second are all there; `next_row` is of second `now`.
void stored_series::end_second(qsizetype next_row, qint64 now) {
    if (is_timed || last_second < 0)
        return;
    const qint64 until = std::min(now, last_second + 1) * second - *start;
    matrix.spread_times(row_of_second, next_row, static_cast<double>(until));
}

void stored_series::take(QByteArrayView line) {
    int column = 0;
    for (qsizetype from = 0; from <= line.size() && column < matrix.columns(); ++column) {
        const auto comma = std::find(line.begin() + from, line.end(), ',');
        const qsizetype to = comma - line.begin();
        const int taken = take_cell(column, line.sliced(from, to - from).trimmed());
        const double offset = moment ? moment->offsets.value(column, qQNaN()) : qQNaN();
        if (taken >= 0 && !std::isnan(offset))
            matrix.came(taken, moment->ms + offset);
        from = to + 1;
    }
}

// The column that it stands in; -1 for none.
int stored_series::take_cell(int column, QByteArrayView item) {
    if (item.size() <= pid_end || !item.startsWith(answer))
        return -1;
    column = column_of(item.sliced(answer.size(), pid_end - answer.size()), column);
    if (column >= 0)
        matrix.set_bytes(column, item);
    return column;
}

// That of the PID, wherever the cell stands; -1 for a PID that has none.
int stored_series::column_of(QByteArrayView pid, int place) {
    QString& told = column_pids[place];
    if (told == QLatin1String(pid))
        return place;
    const QString its_pid = QString::fromLatin1(pid).toUpper();
    const int column = static_cast<int>(column_pids.indexOf(its_pid));
    const bool is_anothers = // of the same PID at another ECU
        told.isEmpty() && matrix.body(matrix.rows() - 1, column).startsWith(QLatin1String("41"));
    if (!told.isEmpty() || (column >= 0 && !is_anothers))
        return column;
    told = its_pid;
    return place;
}

void stored_series::count_again() {
    sums.start(matrix.columns());
    sums.count_rows(matrix);
}

} // namespace brivant
