#include "app/diagnostics/readiness_model.h"

#include "diagnostics/permanent_codes.h"

#include <QIcon>
#include <algorithm>

namespace brivant {

namespace {

struct state_look {
    const char* state;
    const char* picture;
    const char* words;
};

constexpr state_look complete{"OK", "ok_pic.png", "complete"};
constexpr state_look not_complete{"X", "not_ok.png", "not complete"};
constexpr state_look not_supported{"", "not_avail.png", "not supported"};
constexpr state_look not_enabled{"", "not_avail.png", "not enabled in this drive cycle"};

const state_look& look_of(const readiness_row& row) {
    if (row.state == QLatin1String(complete.state))
        return complete;
    if (row.state == QLatin1String(not_complete.state))
        return not_complete;
    return row.group == drive_cycle_group ? not_enabled : not_supported;
}

} // namespace

readiness_model::readiness_model(const QList<readiness_row>& its_rows, QObject* parent)
    : headed_model({QStringLiteral("State"), QStringLiteral("Description")}, parent), rows(its_rows) {
    reload();
}

void readiness_model::reload() {
    beginResetModel();
    lines.clear();
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (i == 0 || rows.at(i).group != rows.at(i - 1).group)
            lines += {-1, i};
        lines += {i, i};
    }
    endResetModel();
}

QString readiness_model::summary() const {
    const auto rows_with = [this](const char* state) {
        return std::count_if(rows.begin(), rows.end(), [state](const readiness_row& row) {
            return row.state == QLatin1String(state) && row.group != drive_cycle_group;
        });
    };
    const auto done = rows_with(complete.state);
    const auto supported = done + rows_with(not_complete.state);
    const bool none = std::all_of(rows.begin(), rows.end(),
                                  [](const readiness_row& row) { return row.group == drive_cycle_group; });
    return none ? QString() : QStringLiteral("%1 of %2 complete").arg(done).arg(supported);
}

int readiness_model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines.size());
}

QVariant readiness_model::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= lines.size())
        return {};
    const line& shown = lines.at(index.row());
    if (shown.group_of >= rows.size())
        return {};
    const readiness_row& row = rows.at(shown.group_of);
    if (shown.monitor < 0) {
        if (role == Qt::FontRole)
            return bold_when(true);
        return role == Qt::DisplayRole && index.column() == state_column ? QVariant(row.group) : QVariant();
    }
    const state_look& look = look_of(row);
    const bool is_state = index.column() == state_column;
    switch (role) {
    case Qt::DisplayRole: return is_state ? QVariant() : QStringLiteral("     %1").arg(row.label);
    case Qt::DecorationRole:
        return is_state ? QIcon(QStringLiteral(":/artwork/") + QLatin1String(look.picture)) : QVariant();
    case Qt::ToolTipRole: return QLatin1String(look.words);
    case Qt::AccessibleTextRole: return is_state ? QString::fromLatin1(look.words) : row.label;
    default: return {};
    }
}

Qt::ItemFlags readiness_model::flags(const QModelIndex& index) const {
    return is_heading(index.row()) ? Qt::ItemIsEnabled : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

} // namespace brivant
