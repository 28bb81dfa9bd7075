#pragma once

#include "charts/sample_matrix.h"
#include "charts/series_averages.h"
#include "persistence/row_cursor.h"
#include "persistence/stored_logs.h"
#include "persistence/stored_moments.h"

#include <limits>
#include <memory>

namespace brivant {

// Reads a stored sampling run into a sample matrix, a slice of its lines at a time, so that one of any length
// can be shown as it comes, and stopped by letting this go. A cell that holds no reply ("~", "NODATA", "-1")
// stays empty. The columns are those of the first line, and a cell stands in
// that of its PID. Lines of older programs have whole seconds alone: they lie evenly in theirs.
class stored_series {
public:
    static constexpr qsizetype most_columns = 64;
    static constexpr qsizetype all_rows = std::numeric_limits<qsizetype>::max();

    // `most_rows`: no more of the run are read, nor more than the matrix holds. It is emptied, and outlives
    // this.
    stored_series(database& store, const log_header& log, sample_matrix& into,
                  qsizetype most_rows = all_rows);

    // Reads up to `lines` further lines. True while there are more.
    bool step(int lines);

    qsizetype rows() const { return row_count; }
    // How many lines the log says that it has; 0 when it does not say.
    qint64 announced() const { return lines_announced; }
    // The run has more rows than were read.
    bool is_cut() const { return cut; }
    // The columns beyond those that can be drawn.
    qsizetype columns_left_out() const { return left_out; }
    // A sentence for the person, "" while nothing is wrong.
    const QString& problem() const { return what_is_wrong; }

    // A column each: its PID ("0C"); "" while no cell has told it.
    const QStringList& pids() const { return column_pids; }
    // Milliseconds of UTC since 1970 at the 0 of the matrix's times; nothing where that cannot be read.
    const std::optional<qint64>& started_utc_ms() const { return start; }
    // The times are those of the values, and not of the lines.
    bool has_moments() const { return is_timed; }
    // Of all rows but the last one read, while there are more.
    const series_averages& averages() const { return sums; }
    // The numbers of the matrix have changed.
    void count_again();

private:
    void begin_row(QByteArrayView line);
    void take_time();
    void take_seconds(qint64 utc);
    void end_second(qsizetype next_row, qint64 now);
    void take(QByteArrayView line);
    int take_cell(int column, QByteArrayView item);
    int column_of(QByteArrayView pid, int place);
    bool fail(const QString& reason);

    sample_matrix& matrix;
    const qsizetype limit;
    qint64 lines_announced = 0;
    qsizetype row_count = 0;
    bool cut = false;
    qsizetype left_out = 0;
    QStringList column_pids;
    bool is_timed;
    std::optional<qint64> start;
    std::optional<sweep_moment> moment; // of the line at hand
    qint64 last_second = -1;
    qsizetype row_of_second = 0; // its first
    series_averages sums;
    std::unique_ptr<row_cursor> lines_left;
    QString what_is_wrong;
};

} // namespace brivant
