#pragma once

#include "app/look/headed_model.h"
#include "app/look/theme.h"
#include "shell/pid_choice.h"

namespace brivant {

// The rows of the PID chooser. Both read the choice where it is; the choice and the look outlive them.
class pid_rows : public headed_model {
    Q_OBJECT

public:
    enum column { name_column, pid_column, ecu_column, column_count };

    pid_rows(const pid_choice& its_choice, const theme& its_look, QObject* parent);

    // The choice has changed; with `reset` the rows are others.
    void reload(bool reset);
    // "" outside the rows.
    QString item_at(const QModelIndex& index) const;

    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

protected:
    virtual const pid_entry& entry_at(int row) const = 0;

    const pid_choice& choice;
    const theme& look;
};

// What the vehicle reports and the search leaves over, with a tick at what is chosen.
class offered_pids_model : public pid_rows {
    Q_OBJECT

public:
    offered_pids_model(const pid_choice& its_choice, const theme& its_look, QObject* parent);

    void set_search(const QString& words);
    void reload_all();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

protected:
    const pid_entry& entry_at(int row) const override { return choice.available().at(places.at(row)); }

private:
    QString search;
    QList<qsizetype> places; // of the shown rows among the available ones
};

// What is chosen, in order.
class chosen_pids_model : public pid_rows {
    Q_OBJECT

public:
    using pid_rows::pid_rows;

    int rowCount(const QModelIndex& parent = {}) const override;

protected:
    const pid_entry& entry_at(int row) const override { return choice.chosen().at(row); }
};

} // namespace brivant
