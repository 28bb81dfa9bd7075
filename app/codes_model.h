#pragma once

#include "diagnostics/readCodes.h"

#include <QAbstractTableModel>

// The code rows of the last read as the columns "Codes", "ECU" and "Description". It reads the results where
// they are; the controller and its results outlive it.
class codes_model : public QAbstractTableModel {
    Q_OBJECT

public:
    enum column { code_column, ecu_column, description_column, column_count };

    codes_model(readCodes& its_controller, QObject* parent);

    // The results have changed.
    void reload();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString cell(const QString& row, int at) const;
    QString ecu_name(const QString& header) const;

    readCodes& controller;
    int shown_rows = 0; // as the views know it
};
