#pragma once

#include "formats/export_columns.h"

#include <QByteArrayList>
#include <QIODevice>
#include <variant>

namespace brivant {

// Reads what timed_csv_writer wrote, a row at a time, from an open device. Nothing about the file is
// believed: lines, columns and rows are bounded, and what cannot be read is told with the number of its line.
// Rows may have been left out or marked by hand, columns not.
class timed_csv_reader {
public:
    using item = std::variant<timed_sweep, timed_mark>;

    static constexpr qint64 longest_line = 256 * 1024; // bytes
    static constexpr qsizetype most_columns = 512;     // of the run
    static constexpr qint64 most_rows = 20'000'000;

    explicit timed_csv_reader(QIODevice& in) : device(in) {}

    // False when it is no such file: see problem().
    bool read_head();
    const run_head& head() const { return run; }
    // In the order of the file; nothing at its end, or when there is a problem.
    std::optional<item> next();

    // As a sentence for the person; "" while nothing is wrong.
    const QString& problem() const { return what_is_wrong; }

private:
    bool read_row();
    bool split(const QByteArray& row);
    std::optional<item> item_of_row();
    double time_of_row();
    bool fill(timed_sweep& sweep);
    std::optional<double> number_in(qsizetype cell);
    bool fail(const QString& reason);

    QIODevice& device;
    run_head run;
    QList<export_column> columns;
    QByteArrayList cells; // of the latest row
    qint64 line = 0;      // its number
    double latest_ms = 0;
    bool has_begun = false;
    std::optional<timed_mark> marked_by_hand; // in the row of a sweep
    QString what_is_wrong;
};

} // namespace brivant
