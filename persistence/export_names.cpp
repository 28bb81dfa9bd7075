#include "persistence/export_names.h"

#include "base/string_table.h"
#include "persistence/log_files.h"
#include "persistence/sqlite_connection.h"

namespace brivant {

namespace {

// Without number and suffix.
QString bare_name(const log_header& log) {
    return export_file_name(log, false).chopped(4);
}

int earlier_logs_of_the_name(database& db, const log_header& log) {
    // The hour that comes twice in autumn gives one local time to two stamps: only their seconds are alike.
    const auto earlier = QStringLiteral("SELECT one.LOG_ID, one.veh_id, one.LOG_TYPE, '', one.time_stamp "
                                        "FROM LOGGIES one, LOGGIES its WHERE its.LOG_ID=%1 AND one.LOG_ID<%1 "
                                        "AND substr(one.time_stamp,-2)=substr(its.time_stamp,-2)");
    const QString name = bare_name(log);
    int found = 0;
    for (const QStringList& row : db.retrieve_from_DB(earlier.arg(log.id))) {
        const auto other = log_header_of(row);
        found += other && bare_name(*other) == name;
    }
    return found;
}

int export_number(database& db, const log_header& log) {
    QStringList others;
    int its_own = 0;
    if (!db.retrieve_from_DB(QStringLiteral("SELECT 1 FROM sqlite_master WHERE name='BV_EXPORTS'")).isEmpty())
        db.for_each_row(QStringLiteral("SELECT NUMBER, LOG_ID FROM BV_EXPORTS WHERE NAME='%1'")
                            .arg(bare_name(log).replace(u'\'', QLatin1String("''"))),
                        [&](const QStringList& row) {
                            if (row.value(1).toInt() == log.id)
                                its_own = row.value(0).toInt();
                            others += row.value(0);
                            return its_own == 0;
                        });
    if (its_own > 0)
        return its_own;
    int number = 1 + earlier_logs_of_the_name(db, log);
    while (others.contains(QString::number(number)))
        ++number;
    return number;
}

} // namespace

QString export_file_name(const log_header& log, bool as_txt) {
    const QString name = fill(QStringLiteral("%@_%@"),
                              {gmt_date_str_2_local_date_str(log.time_stamp).replace(u' ', u'_'), log.type});
    return QString(name).replace(u':', u'_').replace(u'/', u'_') + QLatin1String(as_txt ? ".txt" : ".csv");
}

QString numbered_export_file_name(database& db, const log_header& log, bool as_txt) {
    const QString name = export_file_name(log, as_txt);
    const int number = export_number(db, log);
    return number == 1
               ? name
               : QStringLiteral("%1 (%2)%3").arg(name.chopped(4), QString::number(number), name.last(4));
}

void keep_export_number(database& db, const log_header& log) {
    const int number = export_number(db, log);
    db.change([&](sqlite_connection& connection) {
        sqlite_statement row(
            connection,
            QStringLiteral("INSERT OR IGNORE INTO BV_EXPORTS (NAME, NUMBER, LOG_ID) VALUES (?, ?, ?)"));
        return row.is_prepared() && row.bind(1, bare_name(log)) && row.bind(2, number) &&
               row.bind(3, log.id) && row.step() == sqlite_statement::stepped::done;
    });
}

} // namespace brivant
