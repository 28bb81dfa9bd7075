#include "app/diagnostics/code_list_model.h"

#include "app/diagnostics/results_model.h"
#include "obd/ecu_names.h"

namespace brivant {

code_list_model::code_list_model(const code_list& its_codes,
                                 std::function<QString(const QString&)> its_description)
    : headed_model({QStringLiteral("Codes"), QStringLiteral("ECU"), QStringLiteral("Description")}),
      codes(its_codes), description(std::move(its_description)) {}

void code_list_model::reload() {
    beginResetModel();
    endResetModel();
}

int code_list_model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(codes.rows.size());
}

QString code_list_model::cell(const listed_code& row, int at) const {
    switch (at) {
    case code_column: return row.is_sentence() ? row.sentence : row.code;
    case ecu_column: return ecu_label(row.ecu);
    case description_column: return row.is_sentence() ? QString() : description(row.code).trimmed();
    default: return {};
    }
}

QString code_list_model::note_of(const listed_code& row) {
    const QString kinds = row.kinds();
    return kinds.isEmpty() || row.note.isEmpty() ? kinds + row.note : kinds + QStringLiteral("; ") + row.note;
}

QVariant code_list_model::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const listed_code& row = listed(index.row());
    const bool is_last = index.column() == description_column;
    switch (role) {
    case Qt::DisplayRole: return cell(row, index.column());
    case Qt::AccessibleTextRole:
        return with_note(cell(row, index.column()), is_last ? note_of(row) : QString());
    case note_role: return is_last ? note_of(row) : QString();
    case Qt::FontRole: return bold_when(index.column() == code_column);
    default: return {};
    }
}

} // namespace brivant
