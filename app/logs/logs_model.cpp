#include "app/logs/logs_model.h"

#include "app/look/theme.h"
#include "persistence/log_files.h"

namespace brivant {

logs_model::logs_model(const manage_logsDB& its_manager)
    : headed_model({QStringLiteral("No"), QStringLiteral("Stored on"), QStringLiteral("Kind"),
                    QStringLiteral("Description")}),
      manager(its_manager) {}

void logs_model::reload() {
    beginResetModel();
    shown_rows = static_cast<int>(manager.logs().size());
    endResetModel();
}

void logs_model::append() {
    const int rows = static_cast<int>(manager.logs().size());
    if (rows <= shown_rows)
        return;
    beginInsertRows({}, shown_rows, rows - 1);
    shown_rows = rows;
    endInsertRows();
}

int logs_model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shown_rows;
}

QVariant logs_model::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= manager.logs().size())
        return {};
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole && role != Qt::ToolTipRole)
        return {};
    const log_header log = manager.log_at(index.row());
    if (role == Qt::ToolTipRole)
        return index.column() == description_column ? theme::plain_tool_tip(log.info.trimmed()) : QVariant();
    switch (index.column()) {
    case number_column: return QString::number(log.id);
    case date_column: return format_date_str(log.time_stamp);
    case kind_column: return log.type;
    case description_column: return log.info.trimmed();
    default: return {};
    }
}

} // namespace brivant
