#pragma once

#include "app/look/headed_model.h"
#include "diagnostics/second_reading.h"

namespace brivant {

// A table over rows, or over the shown one of two readings. It reads the rows where they are; they outlive
// it. Rows that are added while an operation runs leave the selection as it is.
class results_model : public headed_model {
    Q_OBJECT

public:
    results_model(const QList<noted_row>& its_rows, const QStringList& its_headings, QObject* parent);
    results_model(second_reading& its_reading, const QStringList& its_headings, QObject* parent);

    // The results have changed.
    void reload();
    // A row that stands for the group of rows below it.
    virtual bool is_heading(int) const { return false; }

    int rowCount(const QModelIndex& parent = {}) const override;

protected:
    const QList<noted_row>& rows() const { return reading ? reading->shown() : *plain_rows; }
    const result_row& row_at(const QModelIndex& index) const { return rows().at(index.row()).row; }
    bool is_shown(const QModelIndex& index) const { return index.isValid() && index.row() < rowCount(); }
    // What the other reading says about the row, "" where both say the same.
    QString note_on(int row) const { return rows().value(row).note; }

private:
    second_reading* reading = nullptr;
    const QList<noted_row>* plain_rows = nullptr;
    int shown_rows = 0; // as the views know it
};

// The role of a note below a cell's text: see noted_delegate.
constexpr int note_role = Qt::UserRole + 8;
// Both in one text, for those who do not see the table.
QString with_note(const QString& text, const QString& note);

// A table of plain texts: what a row is taken apart into.
class text_rows_model : public results_model {
    Q_OBJECT

public:
    // The cells of a row; a single cell is the heading of a group.
    using split = QStringList (*)(const result_row& row);

    text_rows_model(second_reading& its_reading, const QStringList& its_headings, split its_cells,
                    QObject* parent = nullptr);

    bool is_heading(int row) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    split cells;
};

// A parameter and its value.
QStringList freeze_cells(const result_row& row);
// PID, name and value; a fact about the car has no PID; the heading of an ECU is one cell.
QStringList vehicle_cells(const result_row& row);
// Label and value.
QStringList extras_cells(const result_row& row);

} // namespace brivant
