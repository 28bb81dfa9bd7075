#include "persistence/stored_marks.h"

#include "persistence/sqlite_connection.h"
#include "persistence/stored_moments.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype longest_text = 120;

QString one_line(const QString& word) {
    QString line;
    for (const QChar c : word.left(10 * longest_text))
        line += c.isPrint() || c.isSurrogate() ? c : QChar(u' ');
    line = line.simplified().left(longest_text);
    if (!line.isEmpty() && line.back().isHighSurrogate())
        line.chop(1);
    return line;
}

} // namespace

QString text_of_mark(const QString& word, qsizetype number) {
    const QString line = one_line(word);
    return line.isEmpty() ? QStringLiteral("Mark %1").arg(number) : line;
}

bool store_mark(database& db, int log_id, const timed_mark& mark) {
    return db.change([&](sqlite_connection& connection) {
        sqlite_statement row(
            connection,
            QStringLiteral("INSERT OR IGNORE INTO BV_MARKS (LOG_ID, MILLISECONDS, TEXT) VALUES (?, ?, ?)"));
        return row.is_prepared() && row.bind(1, log_id) && row.bind(2, QString::number(mark.ms, 'f', 3)) &&
               row.bind(3, mark.text) && row.step() == sqlite_statement::stepped::done;
    });
}

QList<timed_mark> marks_of_run(database& db, int log_id) {
    if (db.retrieve_from_DB(QStringLiteral("SELECT 1 FROM sqlite_master WHERE name='BV_MARKS'")).isEmpty())
        return {};
    const auto sql = QStringLiteral(
        "SELECT MILLISECONDS, TEXT FROM BV_MARKS WHERE LOG_ID=%1 ORDER BY MILLISECONDS LIMIT %2");
    QList<timed_mark> marks;
    for (const QStringList& row : db.retrieve_from_DB(sql.arg(log_id).arg(most_marks), database::listed)) {
        bool is_time = false;
        const double ms = row.value(0).toDouble(&is_time);
        if (is_time && ms >= 0 && ms < longest_run_ms)
            marks.append({ms, text_of_mark(row.value(1), marks.size() + 1)});
    }
    return marks;
}

} // namespace brivant
