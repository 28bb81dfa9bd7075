#include "persistence/deletions.h"

#include "base/string_table.h"
#include "persistence/database_schema.h"

namespace brivant {

namespace {

constexpr int rows_a_step = 4000;     // few for a moment, and enough for what a flush of the disk costs
constexpr int rows_on_full_disk = 50; // SQLite's journal of them fits into the reserve
constexpr int rows_a_header = 40;     // two statements

QString with_id(const char* format, int id) {
    return fill(QString::fromLatin1(format), {QString::number(id)});
}

// Deletes those lines of a log that were stored last, as many as are left in `rows`.
bool delete_lines(sqlite_connection& connection, int log_id, int& rows) {
    const auto lines =
        QStringLiteral("DELETE FROM LOGGIES_DATA WHERE rowid IN (SELECT rowid FROM LOGGIES_DATA "
                       "WHERE LOG_ID=%1 ORDER BY rowid DESC LIMIT %2)");
    if (!connection.execute(lines.arg(log_id).arg(rows)))
        return false;
    rows -= connection.changed_rows();
    return true;
}

} // namespace

bool log_deletion::step() {
    if (failed || so_far.cleared == ids.size())
        return false;
    failed = !try_step(rows_a_step) && !(db.make_room() && try_step(rows_on_full_disk));
    return !failed && so_far.cleared < ids.size();
}

bool log_deletion::try_step(int rows) {
    progress reached = so_far;
    const auto work = [&](sqlite_connection& connection) {
        let_own_triggers_run(connection);
        while (rows > 0 && reached.cleared < ids.size()) {
            const int log_id = ids.at(reached.cleared);
            if (reached.headers == reached.cleared) {
                if (!connection.execute(with_id("DELETE FROM LOGGIES where log_id=%d", log_id)))
                    return false;
                ++reached.headers;
            }
            if (!delete_lines(connection, log_id, rows))
                return false;
            reached.cleared += rows > 0 ? 1 : 0;
            rows -= rows_a_header;
        }
        return true;
    };
    if (!db.change(work))
        return false;
    so_far = reached;
    return true;
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
    if (failed)
        return false;
    if (is_gone)
        return its_logs.step();
    is_gone = delete_itself() || (db.make_room() && delete_itself());
    failed = !is_gone;
    return is_gone;
}

bool vehicle_deletion::delete_itself() {
    return db.change([this](sqlite_connection&) {
        return db.delete_from_DB(with_id("DELETE FROM LOGGIES WHERE VEH_ID=%@", id)) &&
               db.delete_from_DB(with_id("DELETE FROM VEH_IMAGES WHERE VEH_ID=%@", id)) &&
               db.delete_from_DB(with_id("DELETE FROM VEHICLES WHERE VEH_ID=%@", id));
    });
}

} // namespace brivant
