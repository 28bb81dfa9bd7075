#include "app/diagnostics/codes_model.h"

#include "app/look/theme.h"

namespace {

const QStringList code_headings{QStringLiteral("Codes"), QStringLiteral("ECU"),
                                QStringLiteral("Description")};

} // namespace

codes_model::codes_model(readCodes& its_controller, const QStringList& its_rows, QObject* parent)
    : results_model(its_rows, code_headings, parent), controller(its_controller) {}

codes_model::codes_model(readCodes& its_controller, second_reading& its_reading, QObject* parent)
    : results_model(its_reading, code_headings, parent), controller(its_controller) {}

QVariant codes_model::data(const QModelIndex& index, int role) const {
    if (!is_shown(index))
        return {};
    const QString& row = row_at(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return cell(row, index.column());
    case Qt::ToolTipRole:
        return index.column() == ecu_column ? theme::plain_tool_tip(ecu_name(cell(row, ecu_column)))
                                            : QVariant();
    case Qt::FontRole: return bold_when(index.column() == code_column);
    default: return {};
    }
}

QString codes_model::cell(const QString& row, int at) const {
    const qsizetype bar = row.indexOf(QLatin1Char('|'));
    QString code = bar < 0 ? row : row.first(bar);
    switch (at) {
    case code_column: return code;
    case ecu_column: return bar < 0 ? QString() : row.sliced(bar + 1);
    case description_column: return controller.description_of(code).trimmed();
    default: return {};
    }
}

QString codes_model::ecu_name(const QString& header) const {
    const QString name = controller.toolies.l_pull_ECU(header);
    return name.isEmpty() ? header : QStringLiteral("%1: %2").arg(header, name);
}
