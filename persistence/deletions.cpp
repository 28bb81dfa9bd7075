#include "persistence/deletions.h"

#include "base/string_table.h"

namespace brivant {

namespace {

constexpr int lines_a_step = 1000;

QString with_id(const char* format, int id) {
    return fill(QString::fromLatin1(format), {QString::number(id)});
}

// Where more lines are stored than one step deletes, those stored last go.
bool shorten(database& db, int log_id, bool& is_longer) {
    const auto last =
        QStringLiteral("(SELECT rowid FROM LOGGIES_DATA WHERE LOG_ID=%1 ORDER BY rowid DESC LIMIT %2)");
    const auto count = QStringLiteral("SELECT COUNT(*) FROM ") + last.arg(log_id).arg(lines_a_step + 1);
    const bool read = db.for_each_row(count, [&is_longer](const QStringList& row) {
        is_longer = row.value(0).toInt() > lines_a_step;
        return false;
    });
    return read &&
           (!is_longer || db.delete_from_DB(QStringLiteral("DELETE FROM LOGGIES_DATA WHERE rowid IN ") +
                                            last.arg(log_id).arg(lines_a_step)));
}

} // namespace

bool log_deletion::step() {
    if (failed || done == ids.size())
        return false;
    bool is_longer = false;
    failed = !shorten(db, ids.at(done), is_longer);
    if (failed || is_longer)
        return !failed;
    failed = !db.delete_a_DB_log(ids.at(done));
    done += !failed;
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
