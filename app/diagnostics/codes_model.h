#pragma once

#include "app/diagnostics/results_model.h"
#include "diagnostics/readCodes.h"

namespace brivant {

// Rows of trouble codes as the columns "Codes", "ECU" and "Description". The controller and its
// results outlive it.
class codes_model : public results_model {
    Q_OBJECT

public:
    enum column { code_column, ecu_column, description_column };

    codes_model(readCodes& its_controller, second_reading& its_reading, QObject* parent = nullptr);

    // A sentence in the place of codes.
    bool is_heading(int row) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    QString cell(const result_row& row, int at) const;
    QString ecu_name(const QString& header) const;

    readCodes& controller;
};

} // namespace brivant
