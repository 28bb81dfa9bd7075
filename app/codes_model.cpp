#include "app/codes_model.h"

#include "app/theme.h"

#include <QFont>
#include <algorithm>

codes_model::codes_model(readCodes& its_controller, QObject* parent)
    : QAbstractTableModel(parent), controller(its_controller) {
    reload();
}

void codes_model::reload() {
    beginResetModel();
    shown_rows = static_cast<int>(controller.results().codesReadArray.size());
    endResetModel();
}

int codes_model::rowCount(const QModelIndex& parent) const {
    // The results may be emptied before the views hear of it.
    return parent.isValid()
               ? 0
               : std::min(shown_rows, static_cast<int>(controller.results().codesReadArray.size()));
}

int codes_model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : column_count;
}

QVariant codes_model::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const QString& row = controller.results().codesReadArray.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return cell(row, index.column());
    case Qt::ToolTipRole:
        return index.column() == ecu_column ? theme::plain_tool_tip(ecu_name(cell(row, ecu_column)))
                                            : QVariant();
    case Qt::FontRole: {
        QFont font;
        font.setBold(true);
        return index.column() == code_column ? QVariant(font) : QVariant();
    }
    case Qt::TextAlignmentRole: return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
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
    const QString name = controller.what_it_works_with().toolies.l_pull_ECU(header);
    return name.isEmpty() ? header : QStringLiteral("%1: %2").arg(header, name);
}

QVariant codes_model::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case code_column: return QStringLiteral("Codes");
    case ecu_column: return QStringLiteral("ECU");
    case description_column: return QStringLiteral("Description");
    default: return {};
    }
}
