#pragma once

#include <QTableView>

namespace brivant {

// The selected rows of a table as text: a row a line, its cells separated by tabulators. A picture stands as
// its words.
QString selected_rows_as_text(const QTableView& table);

// Gives the table "Copy" (Ctrl+C, and in its context menu) and "Select all".
void make_copyable(QTableView& table);

// Texts of several lines, in rows as high as those need: the other columns are as wide as their texts, the
// stretched one takes the rest. The rows can be copied.
void let_rows_wrap(QTableView& table, int stretched_column, int least_height);

// A list of one-line rows to choose one from; `stretched_column` takes the room that the others leave.
void make_list(QTableView& table, int stretched_column, int row_height);

// The rows that are headings run over all columns.
template <class model>
void span_headings(QTableView& table, const model& rows) {
    table.clearSpans();
    for (int row = 0; row < rows.rowCount(); ++row) {
        if (rows.is_heading(row))
            table.setSpan(row, 0, 1, rows.columnCount());
    }
}

} // namespace brivant
