#include "persistence/schema_check.h"

namespace brivant {

namespace {

const auto own_tables = QStringLiteral(
    "SELECT name, sql FROM sqlite_master WHERE type IN ('table', 'view') AND (upper(name) IN ('VEHICLES', "
    "'VEH_IMAGES', 'LOGGIES', 'LOGGIES_DATA', 'P1_CODES') OR name LIKE 'BV!_%' ESCAPE '!')");

// Asked of plain tables alone: a virtual one would begin to work.
const auto worked_out =
    QStringLiteral("SELECT 1 FROM pragma_table_xinfo(?1) WHERE hidden OR dflt_value LIKE '%(%' "
                   "UNION ALL SELECT 1 FROM pragma_index_list(?1) AS one WHERE partial OR EXISTS "
                   "(SELECT 1 FROM pragma_index_xinfo(one.name) WHERE cid = -2)");

bool is_plain(const QString& text) {
    return text.startsWith(QLatin1String("CREATE TABLE "), Qt::CaseInsensitive) &&
           !text.contains(QLatin1String("CHECK"), Qt::CaseInsensitive);
}

} // namespace

std::optional<QString> table_that_runs_something(sqlite_connection& connection) {
    using stepped = sqlite_statement::stepped;
    sqlite_statement tables(connection, own_tables);
    sqlite_statement columns(connection, worked_out);
    if (!tables.is_prepared() || !columns.is_prepared())
        return std::nullopt;
    stepped table = tables.step();
    for (; table == stepped::row; table = tables.step()) {
        const QString name = tables.text(0);
        if (!is_plain(tables.text(1)))
            return name;
        if (!columns.bind(1, name))
            return std::nullopt;
        const stepped found = columns.step();
        if (found != stepped::done)
            return found == stepped::row ? std::optional(name) : std::nullopt;
        columns.reset();
    }
    return table == stepped::done ? std::optional(QString()) : std::nullopt;
}

} // namespace brivant
