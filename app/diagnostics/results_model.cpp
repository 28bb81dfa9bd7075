#include "app/diagnostics/results_model.h"

#include "obd/ecu_names.h"

#include <algorithm>

namespace brivant {

results_model::results_model(const QList<noted_row>& its_rows, const QStringList& its_headings,
                             QObject* parent)
    : headed_model(its_headings, parent), plain_rows(&its_rows), shown_rows(static_cast<int>(rows().size())) {
}

results_model::results_model(second_reading& its_reading, const QStringList& its_headings, QObject* parent)
    : headed_model(its_headings, parent), reading(&its_reading), shown_rows(static_cast<int>(rows().size())) {
}

void results_model::reload() {
    if (reading)
        reading->reload();
    const int now = static_cast<int>(rows().size());
    if (now < shown_rows || shown_rows == 0) {
        beginResetModel();
        shown_rows = now;
        endResetModel();
        return;
    }
    if (now > shown_rows) {
        beginInsertRows({}, shown_rows, now - 1);
        shown_rows = now;
        endInsertRows();
    }
    Q_EMIT dataChanged(index(0, 0), index(now - 1, columnCount() - 1));
}

int results_model::rowCount(const QModelIndex& parent) const {
    // The results may be emptied before the views hear of it.
    return parent.isValid() ? 0 : std::min(shown_rows, static_cast<int>(rows().size()));
}

text_rows_model::text_rows_model(second_reading& its_reading, const QStringList& its_headings,
                                 split its_cells, QObject* parent)
    : results_model(its_reading, its_headings, parent), cells(its_cells) {}

bool text_rows_model::is_heading(int row) const {
    return row >= 0 && row < rowCount() && columnCount() > 1 && cells(rows().at(row).row).size() == 1;
}

QVariant text_rows_model::data(const QModelIndex& index, int role) const {
    if (!is_shown(index))
        return {};
    switch (role) {
    case Qt::DisplayRole: return cells(row_at(index)).value(index.column());
    case Qt::AccessibleTextRole:
        return with_note(cells(row_at(index)).value(index.column()), index.data(note_role).toString());
    case note_role: return index.column() == columnCount() - 1 ? note_on(index.row()) : QString();
    case Qt::FontRole: return bold_when(is_heading(index.row()));
    default: return {};
    }
}

QString with_note(const QString& text, const QString& note) {
    return note.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, note);
}

QStringList freeze_cells(const result_row& row) {
    const auto* value = std::get_if<value_row>(&row);
    if (!value)
        return {row_text(part::freeze, row), QString()};
    const QString description = value->more.trimmed();
    return {value->label.trimmed(),
            description.isEmpty() ? value->value : value->value + QStringLiteral(" - ") + description};
}

QStringList vehicle_cells(const result_row& row) {
    if (const auto* ecu = std::get_if<ecu_row>(&row))
        return {QStringLiteral("ECU(%1) %2: has %3 available PIDs")
                    .arg(ecu_label(ecu->header), ecu->name, QString::number(ecu->pids))};
    const auto* value = std::get_if<value_row>(&row);
    if (!value)
        return {QString(), row_text(part::vehicle, row), QString()};
    return {value->pid, value->label,
            value->more.isEmpty() ? value->value : value->value + QStringLiteral(", ") + value->more};
}

QStringList extras_cells(const result_row& row) {
    const auto* value = std::get_if<value_row>(&row);
    return value ? QStringList{value->label, value->value.trimmed()} : QStringList{};
}

} // namespace brivant
