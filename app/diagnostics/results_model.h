#pragma once

#include "app/look/headed_model.h"
#include "diagnostics/second_reading.h"

#include <functional>

// A table over one list of the results, or over the shown one of its two readings. It reads the rows where
// they are; they outlive it. Rows that are added while an operation runs leave the selection as it is.
class results_model : public headed_model {
    Q_OBJECT

public:
    results_model(const QStringList& its_rows, const QStringList& its_headings, QObject* parent);
    results_model(second_reading& its_reading, const QStringList& its_headings, QObject* parent);

    // The results have changed.
    void reload();
    // A row that stands for the group of rows below it.
    virtual bool is_heading(int) const { return false; }

    int rowCount(const QModelIndex& parent = {}) const override;

protected:
    const QStringList& rows() const { return reading ? reading->shown() : *plain_rows; }
    const QString& row_at(const QModelIndex& index) const { return rows().at(index.row()); }
    bool is_shown(const QModelIndex& index) const { return index.isValid() && index.row() < rowCount(); }
    // What the other reading says about the row, "" where both say the same.
    QString note_on(int row) const { return reading ? reading->note_on(row) : QString(); }

private:
    second_reading* reading = nullptr;
    const QStringList* plain_rows = nullptr;
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
    using split = std::function<QStringList(const QString& row)>;

    text_rows_model(const QStringList& its_rows, const QStringList& its_headings, split its_cells,
                    QObject* parent = nullptr);
    text_rows_model(second_reading& its_reading, const QStringList& its_headings, split its_cells,
                    QObject* parent = nullptr);

    bool is_heading(int row) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    split cells;
};

// "Engine RPM: 1726.00 RPM" as parameter and value.
QStringList split_freeze_row(const QString& row);
// "0C|Engine RPM|1726.00 RPM" as PID, name and value; " VIN: ..." has no PID; a heading of an ECU is one
// cell.
QStringList split_vehicle_row(const QString& row);
// "label:| value |" as label and value.
QStringList split_extras_row(const QString& row);
