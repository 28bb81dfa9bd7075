#include "app/diagnostics/codes_model.h"

#include "app/look/theme.h"

namespace brivant {

namespace {

const QStringList code_headings{QStringLiteral("Codes"), QStringLiteral("ECU"),
                                QStringLiteral("Description")};

} // namespace

codes_model::codes_model(readCodes& its_controller, const QList<noted_row>& its_rows, QObject* parent)
    : results_model(its_rows, code_headings, parent), controller(its_controller) {}

codes_model::codes_model(readCodes& its_controller, second_reading& its_reading, QObject* parent)
    : results_model(its_reading, code_headings, parent), controller(its_controller) {}

QVariant codes_model::data(const QModelIndex& index, int role) const {
    if (!is_shown(index))
        return {};
    const result_row& row = row_at(index);
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

QString codes_model::cell(const result_row& row, int at) const {
    const auto* named = std::get_if<code_row>(&row);
    const QString code = named ? named->code : row_text(part::codes, row);
    switch (at) {
    case code_column: return code;
    case ecu_column: return named ? named->ecu : QString();
    case description_column: return controller.description_of(code).trimmed();
    default: return {};
    }
}

QString codes_model::ecu_name(const QString& header) const {
    const QString name = controller.toolies.l_pull_ECU(header);
    return name.isEmpty() ? header : QStringLiteral("%1: %2").arg(header, name);
}

} // namespace brivant
