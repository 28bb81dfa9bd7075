#pragma once

#include "charts/sample_times.h"

#include <QByteArrayView>
#include <QHash>
#include <QString>
#include <QStringList>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace brivant {

// What a range of rows of one column holds: its first, smallest, largest and last value; all NaN when no row
// of the range has one.
struct series_summary {
    double first = std::numeric_limits<double>::quiet_NaN();
    double minimum = first;
    double maximum = first;
    double last = first;

    bool empty() const { return std::isnan(first); }
    // `later`: the rows behind.
    void append(const series_summary& later);
    void append(double value);
};

// The samples of a run: one row a sweep, one raw reply body a PID, "-1" while none came. Only the last row is
// written to. Beside each body stands its number, and over the rows lie summaries, so that the extremes of
// the run cost nothing and those of any range of rows next to nothing.
//
// A cell takes 20 bytes with its time, and half a byte of the summaries, a row 8 more. What is kept is
// bounded by `most_bytes`: when it is full the oldest 4,096 rows go, and every row behind them is counted
// from the new oldest. The default holds twelve million cells of four PIDs, which 14 sweeps a second fill in
// two and a half days. What a run stores in the database is not affected.
class sample_matrix {
public:
    // The number of a reply body; NaN when it carries none (get_OBDVal).
    using value_function = std::function<double(const QString& body)>;
    static constexpr qsizetype default_most_bytes = qsizetype{256} << 20;

    explicit sample_matrix(value_function value_of_body, qsizetype most_bytes = default_most_bytes);
    ~sample_matrix();
    sample_matrix(const sample_matrix&) = delete;
    sample_matrix& operator=(const sample_matrix&) = delete;

    // The number of a column worked out of the bodies of its whole row.
    using row_function = std::function<double(const QStringList& bodies, int column)>;

    // Empties the matrix for a run of `columns` PIDs and begins the first row.
    void start(int columns);
    // Begins a row of "-1". Nothing happens before start().
    void add_row();
    // Puts a body into the last row. Nothing happens for a column that is not there.
    void set(int column, const QString& body);
    // The same for a body in UTF-8, without a copy of it, and without working out a number met lately: for
    // reading a stored run.
    void set_bytes(int column, QByteArrayView body);
    // The last row begins to be asked for, and the value of a column came: see sample_times.
    void begins(double ms) { its_times.begins(ms); }
    void came(int column, double ms) { its_times.came(column, ms); }
    void spread_times(qsizetype first, qsizetype end, double until) { its_times.spread(first, end, until); }
    // These columns are worked out of the whole row from now on, until start().
    void work_out_of_rows(const QList<int>& columns, row_function of_row);
    // The number that a body gives has changed (units, boost reference): works out every number anew, about a
    // tenth of a second for a million sweeps of eight PIDs.
    void units_changed();

    int columns() const { return column_count; }
    qsizetype rows() const { return row_count; }
    // Rows that made room for newer ones since start(); the run has had dropped() + rows().
    qsizetype dropped() const { return dropped_rows; }
    // As many as that fit before the first ones are dropped.
    qsizetype most_rows() const;
    const sample_times& times() const { return its_times; }

    // "-1" while there is none, and for a row or a column that is not there. "~" for a text that was neither
    // a short hexadecimal one nor found room among the odd ones (1 MiB of distinct texts).
    QString body(qsizetype row, int column) const;
    // NaN where the body is "-1" or "~" or carries no number.
    double value(qsizetype row, int column) const;
    // How many rows from `begin` to before `end` hold no reply in any column: the values before and behind
    // such a gap do not belong together. The last row is none.
    qsizetype gaps(qsizetype begin, qsizetype end) const;
    // Rows from `begin` to before `end`; the cost does not depend on how many they are.
    series_summary summary(int column, qsizetype begin, qsizetype end) const;
    // Smallest and largest value of the whole run, its first row left out; also of rows that were dropped.
    // `first` and `last` say nothing here.
    series_summary extremes(int column) const;
    // The same with the first row, unless it was dropped.
    series_summary extremes_with_first(int column) const;

    // What the matrix takes in memory.
    qsizetype bytes() const;

private:
    struct block;
    class number_cache;

    const block& block_of(qsizetype row) const;
    bool has(qsizetype row, int column) const;
    qsizetype block_bytes() const;
    void make_room();
    void finish_row();
    quint64 odd_word(const QString& body);
    QString text_of(quint64 word) const;
    double number_of(const QString& body) const;
    void put(int column, quint64 word, double number);
    double number_in_row(qsizetype row, int column) const;

    value_function value_of;
    row_function row_value_of;
    QList<int> of_rows; // columns
    qsizetype limit;
    int column_count = 0;
    qsizetype row_count = 0;
    qsizetype dropped_rows = 0;
    std::vector<std::unique_ptr<block>> blocks;
    sample_times its_times;
    std::unique_ptr<number_cache> numbers;
    std::vector<qsizetype> empty_rows;    // rows without a reply, counted with those that were dropped
    std::vector<series_summary> finished; // a column: the run's extremes up to the row before the last

    // Bodies that are no short hexadecimal text, each once.
    QStringList odd_bodies;
    QHash<QString, qsizetype> odd_body_at;
    qsizetype odd_bytes = 0;
};

} // namespace brivant
