#include "app/diagnostics/tests_model.h"

#include <QIcon>

namespace brivant {

namespace {

QString value_of(const test_row& row) {
    return row.unit.isEmpty() ? row.value : row.value + QLatin1Char(' ') + row.unit.trimmed();
}

QString limits_of(const test_row& row) {
    if (row.is_can)
        return QStringLiteral("Min %1, Max %2").arg(row.minimum, row.maximum);
    return (row.limit_is_maximum ? QStringLiteral("Max %1") : QStringLiteral("Min %1")).arg(row.minimum);
}

test_row test_in(const result_row& row) {
    const auto* test = std::get_if<test_row>(&row);
    return test ? *test : test_row();
}

QString verdict_of(const test_row& row) {
    return row.passed ? QStringLiteral("Passed") : QStringLiteral("FAILED");
}

} // namespace

tests_model::tests_model(second_reading& its_reading, const theme& its_look, QObject* parent)
    : results_model(its_reading,
                    {QStringLiteral("Test"), QStringLiteral("Value"), QStringLiteral("Verdict"),
                     QStringLiteral("Limits")},
                    parent),
      look(its_look) {}

test_row tests_model::row_of(int row) const {
    return row >= 0 && row < rowCount() ? test_in(rows().at(row).row) : test_row();
}

QList<int> tests_model::failed() const {
    QList<int> found;
    for (int row = 0; row < rowCount(); ++row) {
        if (!row_of(row).passed)
            found += row;
    }
    return found;
}

QString tests_model::title_of(const test_row& row) {
    const QString monitor = row.monitor.trimmed();
    return monitor.isEmpty() ? row.title().trimmed() : monitor;
}

QString tests_model::subject_of(const test_row& row) {
    if (!row.is_can)
        return row.subject().trimmed();
    return QStringLiteral("OBDMID %1, TID %2  %3").arg(row.obdmid, row.tid, row.test.trimmed()).trimmed();
}

QVariant tests_model::headerData(int section, Qt::Orientation orientation, int role) const {
    if (section == value_column && role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter); // above numbers
    return results_model::headerData(section, orientation, role);
}

QVariant tests_model::data(const QModelIndex& index, int role) const {
    if (!is_shown(index))
        return {};
    const test_row row = test_in(row_at(index));
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        if (column == test_column)
            return title_of(row);
        if (column == value_column)
            return value_of(row);
        return column == verdict_column ? QVariant(verdict_of(row)) : QVariant();
    case Qt::AccessibleTextRole:
        if (column == test_column)
            return with_note(title_of(row) + QStringLiteral(" - ") + subject_of(row), note_on(index.row()));
        return column == limits_column ? QVariant(limits_of(row)) : data(index, Qt::DisplayRole);
    case Qt::ToolTipRole:
        if (column == limits_column)
            return theme::plain_tool_tip(limits_of(row));
        return column == test_column
                   ? theme::plain_tool_tip(QStringList{title_of(row), subject_of(row), note_on(index.row())}
                                               .join(u'\n')
                                               .trimmed())
                   : QVariant();
    case Qt::DecorationRole:
        return column == verdict_column
                   ? look.icon(row.passed ? QStringLiteral("ok_pic.png") : QStringLiteral("not_ok.png"))
                   : QVariant();
    case Qt::ForegroundRole:
        return column == verdict_column ? QVariant(row.passed ? look.green : look.red) : QVariant();
    case Qt::FontRole: return bold_when(column == verdict_column && !row.passed);
    case Qt::TextAlignmentRole:
        return QVariant((column == value_column ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case subject_role: return subject_of(row);
    case note_role: return column == test_column ? note_on(index.row()) : QString();
    case limits_role: return row.limits();
    default: return {};
    }
}

} // namespace brivant
