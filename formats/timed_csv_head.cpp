#include "formats/timed_csv_head.h"

#include "formats/export_text.h"

#include <QDateTime>
#include <QRegularExpression>

namespace brivant {

namespace {

const QString about = QStringLiteral("About: ");
const QString between = QStringLiteral("; ");
const QString columns_word = QStringLiteral("columns ");
const QString with_offsets = QStringLiteral("with offsets");
const QString with_positions = QStringLiteral("with positions");

// A person's text within the statements: what parts them is written as "\003B".
QString escaped(const QString& text) {
    QString safe;
    for (const QChar c : text)
        if (c < u' ' || c == QChar(0x7F) || QStringLiteral("\\;,\"[]|").contains(c))
            safe += QStringLiteral("\\%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            safe += c;
    return safe;
}

QString unescaped(const QString& safe) {
    QString text;
    for (qsizetype i = 0; i < safe.size(); ++i) {
        bool is_number = false;
        const ushort code = safe[i] == u'\\' ? safe.mid(i + 1, 4).toUShort(&is_number, 16) : ushort(0);
        text += is_number ? QChar(code) : safe[i];
        i += is_number ? 4 : 0;
    }
    return text;
}

QString about_columns(const run_head& head) {
    QStringList columns;
    for (const run_column& column : head.columns)
        columns += escaped(column.pid) + u' ' + escaped(column.name) + QStringLiteral(" [") +
                   escaped(column.unit) + u']';
    return columns_word + columns.join(u'|');
}

// "0C Engine RPM [rpm]|0D ..."
std::optional<QList<run_column>> columns_of(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^([0-9A-Za-z]{0,8}) (.*) \\[([^\\]]*)\\]$"));
    QList<run_column> columns;
    const QStringList parts = text.split(u'|', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const auto found = form.match(part);
        if (!found.hasMatch())
            return std::nullopt;
        columns.append({found.captured(1), unescaped(found.captured(2)), unescaped(found.captured(3))});
    }
    return columns;
}

// Takes one statement in. False when it is none, or cannot be.
bool take(const QString& statement, run_head& head) {
    const auto rest = [&](const QString& word) { return statement.mid(word.size()); };
    if (statement.startsWith(about_program))
        head.version = unescaped(rest(about_program));
    else if (statement.startsWith(about_vehicle))
        head.vehicle = unescaped(rest(about_vehicle));
    else if (statement.startsWith(about_start)) {
        const QDateTime start = QDateTime::fromString(rest(about_start), Qt::ISODateWithMs);
        head.start_ms = start.toMSecsSinceEpoch();
        return start.isValid() && start.timeSpec() == Qt::UTC;
    } else if (statement.startsWith(columns_word)) {
        const auto columns = columns_of(rest(columns_word));
        head.columns = columns.value_or(QList<run_column>());
        return columns.has_value();
    } else if (statement == about_reading(true) || statement == about_reading(false))
        head.by_standard = statement == about_reading(true);
    else if (statement == about_units(unit_system::metric) || statement == about_units(unit_system::imperial))
        head.units =
            statement == about_units(unit_system::metric) ? unit_system::metric : unit_system::imperial;
    else if (statement == with_offsets)
        head.has_offsets = true;
    else if (statement == with_positions)
        head.has_positions = true;
    else
        return false;
    return true;
}

} // namespace

QString csv_name_of(const export_column& column, const run_head& head) {
    using kind = export_column::kind;
    const auto is_value_of = [&](const char* pid) {
        return column.what == kind::value && head.columns[column.of].pid == QLatin1String(pid);
    };
    const QString unit = column.unit.section(u' ', 0, 0).toLower(); // "rpm by SAE J1979"
    if (is_value_of("0C") && unit == QLatin1String("rpm"))
        return QStringLiteral("RPM");
    if (is_value_of("0D") && (unit == QLatin1String("kph") || unit == QLatin1String("km/h")))
        return QStringLiteral("KPH");
    if (is_value_of("0D") && unit == QLatin1String("mph"))
        return QStringLiteral("MPH");
    if (is_value_of("11") && unit == QLatin1String("%"))
        return QStringLiteral("Throttle");
    const bool is_place =
        column.what == kind::latitude || column.what == kind::longitude || column.what == kind::altitude;
    return column.unit.isEmpty() || is_place ? column.name
                                             : column.name + QStringLiteral(" (") + column.unit + u')';
}

QString csv_cell(const QString& text) {
    static const QRegularExpression plain(QStringLiteral("^[^,;\"\\s]*$"));
    return text.contains(plain) ? text : u'"' + QString(text).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QStringList timed_csv_names(const run_head& head) {
    QStringList names{QStringLiteral("Time")};
    for (const export_column& column : export_columns(head))
        names += csv_name_of(column, head).simplified();
    run_head as_told = head;
    as_told.version = escaped(head.version);
    as_told.vehicle = escaped(head.vehicle);
    QStringList statements = about_run(as_told);
    if (head.has_offsets)
        statements += with_offsets;
    if (head.has_positions)
        statements += with_positions;
    statements += about_columns(head);
    return names << QStringLiteral("Mark") << about + statements.join(between);
}

std::optional<run_head> head_of_timed_csv(const QString& last_name, QString& problem) {
    if (!last_name.startsWith(about + about_program)) {
        problem = QStringLiteral("its last column does not say what the run is; only files that this program "
                                 "exported as \"timed\" can be read");
        return std::nullopt;
    }
    run_head head;
    const QStringList statements = last_name.mid(about.size()).split(between);
    for (const QString& statement : statements)
        if (!take(statement, head)) {
            problem = QStringLiteral("its last column says \"%1\", which is not understood")
                          .arg(statement.left(60));
            return std::nullopt;
        }
    if (head.columns.isEmpty()) {
        problem = QStringLiteral("its last column names no PID");
        return std::nullopt;
    }
    return head;
}

} // namespace brivant
