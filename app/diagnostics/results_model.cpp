#include "app/diagnostics/results_model.h"

#include <algorithm>

results_model::results_model(const QStringList& its_rows, const QStringList& its_headings, QObject* parent)
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

text_rows_model::text_rows_model(const QStringList& its_rows, const QStringList& its_headings,
                                 split its_cells, QObject* parent)
    : results_model(its_rows, its_headings, parent), cells(std::move(its_cells)) {}

text_rows_model::text_rows_model(second_reading& its_reading, const QStringList& its_headings,
                                 split its_cells, QObject* parent)
    : results_model(its_reading, its_headings, parent), cells(std::move(its_cells)) {}

bool text_rows_model::is_heading(int row) const {
    return row >= 0 && row < rowCount() && columnCount() > 1 && cells(rows().at(row)).size() == 1;
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

QStringList split_freeze_row(const QString& row) {
    const qsizetype colon = row.indexOf(QLatin1String(": "));
    if (colon < 0)
        return {row.trimmed(), QString()};
    // The code that stored the frame and its description are two fields.
    const QStringList fields = row.mid(colon + 2).split(QLatin1Char('|'));
    QString value = fields.value(0).trimmed();
    if (const QString description = fields.value(1).trimmed(); !description.isEmpty())
        value += QStringLiteral(" - ") + description;
    return {row.left(colon).trimmed(), value};
}

QStringList split_vehicle_row(const QString& row) {
    const QString text = row.trimmed();
    const QStringList fields = text.split(QLatin1Char('|'));
    if (text.startsWith(QLatin1String("--- ECU("))) {
        QString name = fields.first();
        return {name.remove(QLatin1String("---")).trimmed() + QStringLiteral(": ") +
                fields.value(1).trimmed()};
    }
    if (fields.size() >= 3)
        return {fields.at(0).trimmed(), fields.at(1).trimmed(),
                fields.mid(2).join(QLatin1Char('|')).trimmed()};
    const qsizetype colon = text.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return {QString(), text, QString()};
    QStringList values;
    for (const QString& value : text.mid(colon + 1).split(QLatin1Char('|')))
        values += value.trimmed();
    return {QString(), text.left(colon).trimmed(), values.join(QStringLiteral(", "))};
}

QStringList split_extras_row(const QString& row) {
    QString label = row.section(QLatin1Char('|'), 0, 0).trimmed();
    if (label.endsWith(QLatin1Char(':')))
        label.chop(1);
    QString value = row.section(QLatin1Char('|'), 1).trimmed();
    if (value.endsWith(QLatin1Char('|')))
        value.chop(1);
    return {label, value.trimmed()};
}
