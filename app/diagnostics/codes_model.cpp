#include "app/diagnostics/codes_model.h"

#include "app/look/theme.h"
#include "base/string_table.h"
#include "obd/ecu_names.h"

namespace brivant {

namespace {

const QStringList code_headings{QStringLiteral("Codes"), QStringLiteral("ECU"),
                                QStringLiteral("Description")};

// That there are no codes has a description of its own.
bool is_sentence(const result_row& row) {
    const auto* words = std::get_if<words_row>(&row);
    return words && words->text != localised(QStringLiteral("NO_CODES"));
}

} // namespace

codes_model::codes_model(readCodes& its_controller, second_reading& its_reading, QObject* parent)
    : results_model(its_reading, code_headings, parent), controller(its_controller) {}

bool codes_model::is_heading(int row) const {
    return row >= 0 && row < rowCount() && is_sentence(rows().at(row).row);
}

QVariant codes_model::data(const QModelIndex& index, int role) const {
    if (!is_shown(index))
        return {};
    const result_row& row = row_at(index);
    switch (role) {
    case Qt::DisplayRole: return cell(row, index.column());
    case Qt::AccessibleTextRole:
        return with_note(cell(row, index.column()), index.data(note_role).toString());
    case note_role: return index.column() == description_column ? note_on(index.row()) : QString();
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
    case ecu_column: return named ? ecu_label(named->ecu) : QString();
    case description_column: return is_sentence(row) ? QString() : controller.description_of(code).trimmed();
    default: return {};
    }
}

QString codes_model::ecu_name(const QString& header) const {
    const QString name = controller.toolies.l_pull_ECU(header);
    return name.isEmpty() ? header : QStringLiteral("%1: %2").arg(header, name);
}

} // namespace brivant
