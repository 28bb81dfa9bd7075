#include "logs/log_texts.h"

#include "base/string_table.h"
#include "diagnostics/stored_result.h"
#include "obd/number_text.h"
#include "obd/readings/sweep_values.h"
#include "obd/reply_text.h"
#include "persistence/log_files.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr qsizetype longest_text = 512 * 1024;
constexpr qsizetype most_preview_lines = 12;
constexpr qsizetype most_preview_columns = 40;
constexpr qsizetype longest_preview = 64 * 1024;
constexpr int preview_decimals = 2;

const QString cut_note =
    QStringLiteral("... The log is longer than can be shown here. Export holds all of a run.\n");

const QRegularExpression& font_tags() {
    static const QRegularExpression tags(
        QStringLiteral("</?font( +(size|color)=[\"']?[-+#A-Za-z0-9]{1,16}[\"']?)*>"),
        QRegularExpression::CaseInsensitiveOption);
    return tags;
}

QString as_html(const QString& text, const QString& line_end) {
    QString html;
    qsizetype at = 0;
    for (auto tags = font_tags().globalMatch(text); tags.hasNext();) {
        const QRegularExpressionMatch tag = tags.next();
        html += text.sliced(at, tag.capturedStart() - at).toHtmlEscaped() + tag.captured();
        at = tag.capturedEnd();
    }
    html += text.sliced(at).toHtmlEscaped();
    return html.replace(u'\n', line_end);
}

QString report_statement(int log_id) {
    return fill(QStringLiteral("SELECT * FROM LOGGIES_DATA where  LOG_ID=%@ ORDER by time_stamp DESC "),
                {QString::number(log_id)});
}

// --- the preview of a run ----------------------------------------------------------------------------------

QString cell_of(double number) {
    return std::isfinite(number) ? with_decimals(number, preview_decimals) : QStringLiteral("-");
}

QString column_name(const mac_toolies& toolies, const QString& pid) {
    return pid.isEmpty() ? not_available : sampled_heading(pid, toolies.shown_reading(), toolies.lists());
}

QString note_on(const mac_toolies& toolies, const QStringList& otherwise) {
    if (otherwise.isEmpty())
        return {};
    return (toolies.standard_reading() ? QStringLiteral("The program's own reading says otherwise of: ")
                                       : QStringLiteral("SAE J1979 says otherwise of: ")) +
           otherwise.join(QLatin1String(", ")) + u'\n';
}

QString as_columns(const QList<QStringList>& rows) {
    QString text;
    for (const QStringList& row : rows) {
        for (qsizetype column = 0; column < row.size(); ++column) {
            qsizetype width = 0;
            for (const QStringList& other : rows)
                width = std::max(width, other.value(column).size());
            text += row.at(column).rightJustified(width) + QStringLiteral("   ");
        }
        text = text.trimmed().isEmpty() ? text : text.chopped(3);
        text += u'\n';
    }
    return text;
}

QString samples(mac_toolies& toolies, int log_id) {
    QList<QStringList> rows;
    QStringList pids;
    QStringList otherwise;
    bool more = false;
    toolies.store().for_each_row(chunks_statement(log_id), [&](const QStringList& stored) {
        more = rows.size() > most_preview_lines;
        if (more)
            return false;
        const QStringList items =
            Pull_line_into_array(stored.value(chunk_data).left(longest_preview), QStringLiteral(","))
                .mid(0, most_preview_columns);
        if (rows.isEmpty())
            rows += QStringList();
        tell_columns(pids, items);
        rows += QStringList(gmt_date_str_2_local_date_str(stored.value(chunk_time_stamp)).section(u' ', 1));
        const QStringList cells = in_columns(pids, items);
        for (const double number : sampled_numbers(cells, toolies.shown_reading(), toolies.lists()))
            rows.last() += cell_of(number);
        for (const QString& item : cells) {
            const QString name = toolies.get_pid_name_with_pid(sampled_pid(item));
            if (!otherwise.contains(name) &&
                readings_differ_in(cells, item, toolies.shown_reading(), toolies.lists()))
                otherwise += name;
        }
        return true;
    });
    if (rows.isEmpty())
        return {};
    rows.first() += QStringLiteral("Time");
    for (const QString& pid : std::as_const(pids))
        rows.first() += column_name(toolies, pid);
    return as_columns(rows) + (more ? QStringLiteral("...\n") : QString()) + note_on(toolies, otherwise);
}

} // namespace

bool isSampledLog(const QString& log_type) {
    return log_type == QLatin1String("Log") || log_type == QLatin1String("Boost") ||
           log_type == QLatin1String("O2") || log_type == QLatin1String("Fuel");
}

QString stored_text(database& db, int log_id) {
    QString text;
    const auto statement =
        QStringLiteral("SELECT * FROM LOGGIES_DATA where LOG_ID=%@ ORDER by time_stamp DESC ");
    db.for_each_row(fill(statement, {QString::number(log_id)}), [&](const QStringList& row) {
        text += row.value(chunk_data) + u'\n';
        return text.size() <= longest_text;
    });
    return text.size() <= longest_text ? text : text.left(longest_text) + u'\n' + cut_note;
}

QString standard_part_of(mac_toolies& toolies, const log_header& log) {
    const bool is_of_codes = log.type == QLatin1String("DTC");
    if (isSampledLog(log.type) || (!is_of_codes && !toolies.standard_reading()))
        return {};
    const auto replies = replies_of(toolies.store(), log.id);
    if (!replies)
        return QStringLiteral("\nThe replies that are stored with this log cannot be read.\n");
    if (replies->isEmpty())
        return toolies.standard_reading()
                   ? QStringLiteral(
                         "\nNo replies are stored with this log: it can only be shown as the program "
                         "read it.\n")
                   : QString();
    return QStringLiteral("\n\n....... The same replies by SAE J1979 .......\n%1\n")
        .arg(without_tags(standard_text(log.type, *replies, toolies)));
}

QString viewLog(mac_toolies& toolies, const log_header& log) {
    return QStringLiteral("<font size=-2>%1")
        .arg(as_html(stored_text(toolies.store(), log.id) + standard_part_of(toolies, log),
                     QStringLiteral("<br>")));
}

QString report_html(database& db, const log_header& log) {
    QString chunk;
    db.for_each_row(report_statement(log.id), [&](const QStringList& row) {
        chunk = row.value(chunk_data);
        return false;
    });
    if (chunk.size() > longest_text)
        chunk = chunk.left(longest_text) + u'\n' + cut_note;
    return fill(QStringLiteral("<font size=-3>%@\n%@</font>"),
                {as_html(log.info, QStringLiteral("<BR>")), as_html(chunk, QStringLiteral("<BR>"))});
}

QString without_tags(QString text) {
    return text.remove(font_tags());
}

QString preview_of(mac_toolies& toolies, const log_header& log) {
    if (isSampledLog(log.type))
        return samples(toolies, log.id);
    return without_tags(stored_text(toolies.store(), log.id) + standard_part_of(toolies, log))
        .left(longest_preview);
}

} // namespace brivant
