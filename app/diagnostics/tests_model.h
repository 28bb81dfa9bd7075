#pragma once

#include "app/diagnostics/results_model.h"
#include "app/look/theme.h"

namespace brivant {

// Rows of test results as the columns "Test", "Value", "Verdict" and "Limits". The reading and the look
// outlive it.
class tests_model : public results_model {
    Q_OBJECT

public:
    enum { test_column, value_column, verdict_column, limits_column };
    // The second line of a test's name, and the triple of its limit bar (see diagnostics/result_rows.h).
    enum { subject_role = Qt::UserRole, limits_role };

    tests_model(second_reading& its_reading, const theme& its_look, QObject* parent = nullptr);

    test_row row_of(int row) const;
    // What the other reading says about the row.
    QString other_reading_of(int row) const { return note_on(row); }
    // The rows that failed, from the first.
    QList<int> failed() const;

    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // The name of a test in two lines: the monitor, and what was tested.
    static QString title_of(const test_row& row);
    static QString subject_of(const test_row& row);

private:
    const theme& look;
};

} // namespace brivant
