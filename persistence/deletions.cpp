#include "persistence/deletions.h"

#include "base/string_table.h"
#include "persistence/database_schema.h"

namespace brivant {

namespace {

constexpr int rows_a_step = 4000; // few for a moment, and enough for what a flush of the disk costs
constexpr int rows_a_header = 40; // two statements

QString with_id(const char* format, int id) {
    return fill(QString::fromLatin1(format), {QString::number(id)});
}

// Deletes a log, or those of its lines that were stored last: as many rows as are left in `rows`. False when
// it failed; `is_gone` tells whether it was all of it.
bool delete_log(sqlite_connection& connection, int log_id, int& rows, bool& is_gone) {
    const auto lines =
        QStringLiteral("DELETE FROM LOGGIES_DATA WHERE rowid IN (SELECT rowid FROM LOGGIES_DATA "
                       "WHERE LOG_ID=%1 ORDER BY rowid DESC LIMIT %2)");
    if (!connection.execute(lines.arg(log_id).arg(rows)))
        return false;
    rows -= connection.changed_rows();
    is_gone = rows > 0;
    if (!is_gone)
        return true;
    rows -= rows_a_header;
    return connection.execute(with_id("DELETE FROM LOGGIES where log_id=%d", log_id));
}

} // namespace

bool log_deletion::step() {
    if (failed || done == ids.size())
        return false;
    qsizetype gone = 0;
    failed = !db.change([&](sqlite_connection& connection) {
        let_own_triggers_run(connection);
        bool is_gone = true;
        for (int rows = rows_a_step; rows > 0 && is_gone && done + gone < ids.size(); gone += is_gone) {
            if (!delete_log(connection, ids.at(done + gone), rows, is_gone))
                return false;
        }
        return true;
    });
    done += failed ? 0 : gone;
    return !failed && done < ids.size();
}

vehicle_deletion::vehicle_deletion(database& store, int its_veh_id)
    : db(store), id(its_veh_id), its_logs(store, logs_of_it()) {}

QList<int> vehicle_deletion::logs_of_it() {
    QList<int> log_ids;
    failed = !db.for_each_row(with_id("SELECT * FROM LOGGIES where VEH_ID = %@", id),
                              [&log_ids](const QStringList& row) {
                                  log_ids.append(row.value(0).toInt());
                                  return true;
                              });
    return log_ids;
}

bool vehicle_deletion::step() {
    if (failed || its_logs.step())
        return !failed;
    failed = its_logs.has_failed() || !delete_itself();
    return false;
}

// The vehicle goes last: as long as it is listed, the rest can be deleted again.
bool vehicle_deletion::delete_itself() {
    return db.delete_from_DB(with_id("DELETE FROM LOGGIES WHERE VEH_ID=%@", id)) &&
           db.delete_from_DB(with_id("DELETE FROM VEH_IMAGES WHERE VEH_ID=%@", id)) &&
           db.delete_from_DB(with_id("DELETE FROM VEHICLES WHERE VEH_ID=%@", id));
}

} // namespace brivant
