#pragma once

#include "app/look/headed_model.h"
#include "logs/manage_logsDB.h"

namespace brivant {

// The list of logs as a table. Cells are made when they are shown, from the manager's rows; it outlives the
// model.
class logs_model : public headed_model {
    Q_OBJECT

public:
    enum column { number_column, date_column, kind_column, description_column };

    explicit logs_model(const manage_logsDB& its_manager);

    // The list is another one.
    void reload();
    // Rows were added at its end.
    void append();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const manage_logsDB& manager;
    int shown_rows = 0; // as the view knows it
};

} // namespace brivant
