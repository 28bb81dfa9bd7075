#include "persistence/recovery.h"

#include "base/string_table.h"
#include "persistence/database_schema.h"
#include "persistence/deletions.h"
#include "persistence/stored_logs.h"

#include <QElapsedTimer>

namespace brivant {

namespace {

// Lines that belong to no log are seen by nobody: what is left of them after this time goes at the next
// start.
constexpr int patience_ms = 1500;

const QString without_lines =
    QStringLiteral("NOT EXISTS (SELECT 1 FROM LOGGIES_DATA WHERE LOGGIES_DATA.LOG_ID=LOGGIES.LOG_ID)");
const QString without_vehicle = QStringLiteral("VEH_ID NOT IN (SELECT VEH_ID FROM VEHICLES)");
const QString recovered = QStringLiteral("Recovered");

struct findings {
    int runs = 0;
    int headers = 0;
    int logs_without_vehicle = 0;
    int photos = 0;
    qsizetype logs_with_lines_only = 0;
};

int count_of(database& db, const QString& sql) {
    return db.retrieve_from_DB(sql).value(0).value(0).toInt();
}

// The number of sweeps stands in a run's header once it has ended. A line of "~" alone is a gap.
bool finish_cut_runs(database& db, int& runs) {
    const auto cut_short = QStringLiteral("SELECT LOG_ID FROM LOGGIES WHERE INFO='%1'");
    const auto count = QStringLiteral("SELECT TOTAL(DATA GLOB '*[^~,]*'), MAX(DATA2 <> '') "
                                      "FROM LOGGIES_DATA WHERE LOG_ID=%1");
    const QList<QStringList> cut_runs = db.retrieve_from_DB(cut_short.arg(info_of_open_run));
    for (const QStringList& run : cut_runs) {
        const int log_id = run.value(0).toInt();
        const QStringList lines = db.retrieve_from_DB(count.arg(log_id)).value(0);
        if (!finish_sampling_log(db, log_id,
                                 info_of_run(static_cast<int>(lines.value(0).toDouble()),
                                             lines.value(1) == QLatin1String("1"), -1)))
            return false;
    }
    runs = static_cast<int>(cut_runs.size());
    return true;
}

bool give_them_a_vehicle(database& db, int& logs) {
    logs = count_of(db, QStringLiteral("SELECT COUNT(*) FROM LOGGIES WHERE ") + without_vehicle);
    if (logs == 0)
        return true;
    int vehicle = count_of(db, QStringLiteral("SELECT VEH_ID FROM VEHICLES WHERE NAME='%1'").arg(recovered));
    if (vehicle <= 0)
        vehicle = db.add_update_DB({recovered, QString(), QString()}, QStringLiteral("VEHICLES"));
    return vehicle > 0 && db.change([&](sqlite_connection& connection) {
        return connection.execute(QStringLiteral("UPDATE LOGGIES SET VEH_ID=%1 WHERE ").arg(vehicle) +
                                  without_vehicle);
    });
}

bool order(database& db, sqlite_connection& connection, findings& found) {
    // Looked at inside the change: a run is marked before its header is stored.
    const bool is_running = db.lines_are_coming();
    let_own_triggers_run(connection);
    const QString finished = is_running ? QStringLiteral(" AND INFO<>'%1'").arg(info_of_open_run) : QString();
    const bool deleted =
        connection.execute(QStringLiteral("DELETE FROM LOGGIES WHERE ") + without_lines + finished);
    found.headers = connection.changed_rows();
    const bool stripped =
        deleted && connection.execute(QStringLiteral("DELETE FROM VEH_IMAGES WHERE ") + without_vehicle);
    found.photos = connection.changed_rows();
    return stripped && (is_running || finish_cut_runs(db, found.runs)) &&
           give_them_a_vehicle(db, found.logs_without_vehicle);
}

// From one number to the next by the index: there may be millions of lines.
QList<int> logs_with_lines_only(database& db) {
    const auto sql = QStringLiteral(
        "WITH RECURSIVE ids(id) AS (SELECT MIN(LOG_ID) FROM LOGGIES_DATA UNION ALL "
        "SELECT (SELECT MIN(LOG_ID) FROM LOGGIES_DATA WHERE LOG_ID > id) FROM ids WHERE id IS NOT NULL) "
        "SELECT id FROM ids WHERE id IS NOT NULL AND id NOT IN (SELECT LOG_ID FROM LOGGIES)");
    QList<int> ids;
    for (const QStringList& row : db.retrieve_from_DB(sql))
        ids += row.value(0).toInt();
    return ids;
}

void delete_lines_without_log(database& db, findings& found) {
    log_deletion leftovers(db, logs_with_lines_only(db));
    found.logs_with_lines_only = leftovers.asked();
    QElapsedTimer timer;
    timer.start();
    while (leftovers.step() && timer.elapsed() < patience_ms) {
    }
}

QString sentence_of(const findings& found) {
    QStringList parts;
    const auto tell = [&parts](qsizetype count, const char* one, const char* many) {
        if (count > 0)
            parts += QString::fromLatin1(count == 1 ? one : many).arg(count);
    };
    tell(found.runs, "%1 run finished", "%1 runs finished");
    tell(found.logs_without_vehicle, "%1 log put under the vehicle \"Recovered\"",
         "%1 logs put under the vehicle \"Recovered\"");
    tell(found.headers + found.logs_with_lines_only, "%1 log of which only a part was left removed",
         "%1 logs of which only a part was left removed");
    tell(found.photos, "%1 photo without a vehicle removed", "%1 photos without a vehicle removed");
    return parts.isEmpty()
               ? QString()
               : QStringLiteral("Put in order after a sudden end: %1.").arg(parts.join(QLatin1String(", ")));
}

} // namespace

QString put_in_order(database& db) {
    findings found;
    if (!db.change([&](sqlite_connection& connection) { return order(db, connection, found); }))
        return {};
    delete_lines_without_log(db, found);
    return sentence_of(found);
}

} // namespace brivant
