#pragma once

#include "app/results_model.h"
#include "app/theme.h"
#include "diagnostics/mode6_records.h"

// Rows of test results as the columns "Test", "Value", "Verdict" and "Limits". The rows and the look outlive
// it.
class tests_model : public results_model {
    Q_OBJECT

public:
    enum { test_column, value_column, verdict_column, limits_column };
    // The second line of a test's name, and the triple of its limit bar (see diagnostics/mode6_records.h).
    enum { subject_role = Qt::UserRole, limits_role };

    tests_model(const QStringList& its_rows, const theme& its_look, QObject* parent = nullptr);

    mode6_row row_of(int row) const;
    // The rows that failed, from the first.
    QList<int> failed() const;

    QVariant data(const QModelIndex& index, int role) const override;

    // The name of a test in two lines: the monitor, and what was tested.
    static QString title_of(const mode6_row& row);
    static QString subject_of(const mode6_row& row);

private:
    const theme& look;
};
