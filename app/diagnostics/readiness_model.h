#pragma once

#include "app/look/headed_model.h"
#include "obd/readiness.h"

namespace brivant {

// The readiness monitors as the columns "State" (a picture) and "Description", below a heading row for each
// group. It reads the rows where they are; they outlive it.
class readiness_model : public headed_model {
    Q_OBJECT

public:
    enum column { state_column, description_column };

    readiness_model(const QList<readiness_row>& its_rows, QObject* parent);

    // The rows have changed.
    void reload();
    bool is_heading(int row) const { return row >= 0 && row < lines.size() && lines.at(row).monitor < 0; }
    // "4 of 6 complete" since the codes were cleared; "" without rows about that.
    QString summary() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    // A line shown: a monitor by its index, or the heading (-1) of the group of the monitor that follows.
    struct line {
        qsizetype monitor;
        qsizetype group_of;
    };

    const QList<readiness_row>& rows;
    QList<line> lines;
};

} // namespace brivant
