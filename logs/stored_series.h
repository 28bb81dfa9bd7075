#pragma once

#include "charts/sample_matrix.h"
#include "charts/series_averages.h"
#include "persistence/row_cursor.h"
#include "persistence/stored_logs.h"

#include <memory>
#include <vector>

namespace brivant {

// Reads a stored sampling run into a sample matrix, a slice of its lines at a time, so that one of any length
// can be shown as it comes, and stopped by letting this go. A cell that holds no reply ("~", "NODATA", "-1")
// stays empty. The columns are those of the first line, and a cell stands in
// that of its PID.
class stored_series {
public:
    static constexpr qsizetype most_columns = 64;
    // What a matrix holds without dropping its first rows.
    static constexpr qsizetype most_cells = 15'000'000;

    // `most_rows`: no more of the run are read. The matrix is emptied, and outlives this.
    stored_series(database& store, const log_header& log, sample_matrix& into,
                  qsizetype most_rows = most_cells);

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
    // A row each: when it was stored, in seconds of UTC since 1970; -1 when that cannot be read.
    const std::vector<qint64>& times() const { return row_times; }
    // Of all rows but the last one read, while there are more.
    const series_averages& averages() const { return sums; }
    // The numbers of the matrix have changed.
    void count_again();

private:
    void begin_row(QByteArrayView line);
    void take(QByteArrayView line);
    void take_cell(int column, QByteArrayView item);
    int column_of(QByteArrayView pid, int place);
    bool fail(const QString& reason);

    sample_matrix& matrix;
    const qsizetype limit;
    qint64 lines_announced = 0;
    qsizetype row_count = 0;
    bool cut = false;
    qsizetype left_out = 0;
    QStringList column_pids;
    std::vector<qint64> row_times;
    series_averages sums;
    std::unique_ptr<row_cursor> lines_left;
    QString what_is_wrong;
};

} // namespace brivant
