#pragma once

#include "app/look/headed_model.h"
#include "diagnostics/code_list.h"

#include <functional>

namespace brivant {

// Trouble codes of all kinds as the columns "Codes", "ECU" and "Description"; their kinds stand below the
// description. It reads the list where it is; that outlives it.
class code_list_model : public headed_model {
    Q_OBJECT

public:
    enum column { code_column, ecu_column, description_column };

    // `its_description`: of a code.
    code_list_model(const code_list& its_codes, std::function<QString(const QString&)> its_description);

    // The list has changed.
    void reload();
    // A sentence in the place of a code.
    bool is_heading(int row) const { return row >= 0 && row < rowCount() && listed(row).is_sentence(); }
    const listed_code& listed(int row) const { return codes.rows.at(row); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    QString cell(const listed_code& row, int at) const;
    static QString note_of(const listed_code& row);

    const code_list& codes;
    std::function<QString(const QString&)> description;
};

} // namespace brivant
