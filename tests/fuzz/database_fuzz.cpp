// Any bytes as the database file: it opens or is refused with a sentence, what it holds is read within
// bounds, and a file that could be opened takes a vehicle, a log and its lines.
//
// An input is the file.

#include "base/console_log.h"
#include "persistence/recovery.h"
#include "persistence/stored_logs.h"
#include "persistence/stored_replies.h"
#include "tests/fuzz/must_hold.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <cstdint>

namespace brivant {

namespace {

constexpr int most_rows = 2000;
const QString file_name = QStringLiteral("/BV_loggies_lite.db");

void reading(database& db) {
    for (const char* statement :
         {"SELECT * FROM VEHICLES", "SELECT * FROM LOGGIES where veh_id=1 ORDER by time_stamp DESC ",
          "SELECT * FROM LOGGIES_DATA"}) {
        int rows = 0;
        db.for_each_row(QString::fromLatin1(statement),
                        [&rows](const QStringList&) { return ++rows < most_rows; });
    }
    must_hold(db.pull_rawData_fromDB(QStringLiteral("1"), true).startsWith(QLatin1String("-1")),
              "a log's text begins as readers expect it");
    const auto replies = replies_of(db, 1);
    must_hold(!replies || replies->size() <= stored_reply::most_of_a_log,
              "a log has a bounded number of replies");
    const QImage photo = db.pull_veh_image(QStringLiteral("VEH_ID=1"));
    must_hold(photo.width() <= 4096 && photo.height() <= 4096, "a photo is of a bounded size");
}

void storing(database& db) {
    const int log = db.add_2_LOG_DB(QStringLiteral("Log"), 1, QStringLiteral("sample points"));
    db.begin_lines();
    const bool stored = log > 0 && db.append_2_LOG_DB(QStringLiteral("410D3C"), QString(), 0, log) > 0;
    db.end_lines();
    must_hold(stored || !db.problem().isEmpty(), "a line is stored, or it is said why not");
    if (log > 0) {
        store_replies(db, log, {{QStringLiteral("03"), {QStringLiteral("4300"), 6, true}, 0}});
        db.delete_a_DB_log(log);
    }
    put_in_order(db);
    db.add_update_DB({QStringLiteral("Car"), QStringLiteral("2012"), QStringLiteral("2.0")},
                     QStringLiteral("VEHICLES"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/database_fuzz-XXXXXX"));
    static const bool is_silent = (silence_console_log(), true);
    must_hold(is_silent && folder.isValid(), "there is a folder in memory");
    for (const char* companion : {"-wal", "-shm", "-journal"})
        QFile::remove(folder.path() + file_name + QLatin1String(companion));
    QFile file(folder.path() + file_name);
    must_hold(file.open(QIODevice::WriteOnly | QIODevice::Truncate), "the file can be written");
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();

    database db(folder.path());
    const bool usable = db.init_DB();
    must_hold(usable || !db.problem().isEmpty(), "a database is usable, or it is said why not");
    reading(db);
    storing(db);
    return 0;
}

} // namespace brivant
