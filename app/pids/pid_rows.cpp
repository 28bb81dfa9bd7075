#include "app/pids/pid_rows.h"

namespace brivant {

pid_rows::pid_rows(const pid_choice& its_choice, const theme& its_look, QObject* parent)
    : headed_model({QStringLiteral("Value"), QStringLiteral("PID"), QStringLiteral("ECU")}, parent),
      choice(its_choice), look(its_look) {}

void pid_rows::reload(bool reset) {
    if (reset) {
        beginResetModel();
        endResetModel();
    } else if (rowCount() > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, column_count - 1));
    }
}

QString pid_rows::item_at(const QModelIndex& index) const {
    return index.isValid() && index.row() < rowCount() ? entry_at(index.row()).item : QString();
}

QVariant pid_rows::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const pid_entry& entry = entry_at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        switch (index.column()) {
        case name_column:
            return entry.reported ? entry.name
                                  : entry.name + QStringLiteral(" (not reported by this vehicle)");
        case pid_column: return entry.pid;
        default: return entry.ecu;
        }
    case Qt::ToolTipRole:
        return theme::plain_tool_tip(data(index.siblingAtColumn(name_column), Qt::DisplayRole).toString() +
                                     u'\n' + entry.item);
    case Qt::ForegroundRole:
        return !entry.reported                 ? QVariant(look.amber)
               : index.column() == name_column ? QVariant()
                                               : QVariant(look.muted);
    default: return {};
    }
}

QVariant pid_rows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical && role == Qt::DisplayRole)
        return section + 1;
    return headed_model::headerData(section, orientation, role);
}

offered_pids_model::offered_pids_model(const pid_choice& its_choice, const theme& its_look, QObject* parent)
    : pid_rows(its_choice, its_look, parent) {}

void offered_pids_model::set_search(const QString& words) {
    search = words;
    reload_all();
}

void offered_pids_model::reload_all() {
    beginResetModel();
    places.clear();
    for (qsizetype i = 0; i < choice.available().size(); ++i) {
        if (pid_choice::matches(choice.available().at(i), search))
            places += i;
    }
    endResetModel();
}

int offered_pids_model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(places.size());
}

QVariant offered_pids_model::data(const QModelIndex& index, int role) const {
    if (role == Qt::CheckStateRole && index.column() == name_column)
        return choice.is_chosen(item_at(index)) ? Qt::Checked : Qt::Unchecked;
    return pid_rows::data(index, role);
}

int chosen_pids_model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(choice.chosen().size());
}

} // namespace brivant
