#pragma once

#include <QTableView>

// The selected rows of a table as text: a row a line, its cells separated by tabulators. A picture stands as
// its words.
QString selected_rows_as_text(const QTableView& table);

// Gives the table "Copy" (Ctrl+C, and in its context menu) and "Select all".
void make_copyable(QTableView& table);
