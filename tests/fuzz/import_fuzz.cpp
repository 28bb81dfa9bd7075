// Any bytes as a file to import: what is read from it is bounded, every format can hold it, and as timed CSV
// it is read again as the same run. A database takes it whole, or says why not and keeps nothing of it; what
// it has taken it can tell, and lets go of whole.

#include "base/console_log.h"
#include "formats/drive_figures.h"
#include "persistence/deletions.h"
#include "persistence/log_import.h"
#include "persistence/stored_run.h"
#include "tests/formats/run_items.h"
#include "tests/fuzz/must_hold.h"

#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <cstdint>

namespace brivant {

namespace {

struct sampled_runs {
    QTemporaryDir folder{QStringLiteral("/dev/shm/import_fuzz-XXXXXX")};
    QString file = folder.filePath(QStringLiteral("run.csv"));
    database db{folder.path()};
    text_resources lists;

    sampled_runs() {
        silence_console_log();
        must_hold(folder.isValid() && db.init_DB() && db.init_DB() && db.add_own_parts(), "it can be made");
    }
    void holds_nothing() {
        for (const char* table :
             {"LOGGIES", "LOGGIES_DATA", "BV_RUNS", "BV_MOMENTS", "BV_MARKS", "BV_POSITIONS"})
            must_hold(
                db.retrieve_from_DB(QStringLiteral("SELECT LOG_ID FROM ") + QLatin1String(table)).isEmpty(),
                table);
    }
    void tells(int id, const read_run& run) {
        const auto log = log_with_id(db, id);
        must_hold(log.has_value(), "it is in the list");
        stored_run stored(db, *log, lists, {run.head.units, run.head.by_standard});
        db.for_each_row(stored.statement(),
                        [&](const QStringList& row) { return !stored.tell_columns(row); });
        must_hold(stored.head({}).start_ms == run.head.start_ms, "it began when it began");
        QList<double> times;
        db.for_each_row(stored.statement(), [&](const QStringList& row) {
            times += stored.sweep_of(row).ms;
            return true;
        });
        for (const auto& item : run.items)
            if (const auto* sweep = std::get_if<timed_sweep>(&item)) // to ten microseconds
                must_hold(!times.isEmpty() && std::fabs(times.takeFirst() - sweep->ms) < 0.006,
                          "each sweep has its moment");
        must_hold(times.isEmpty(), "it has no other sweeps");
    }
    void take(const QByteArray& bytes, const read_run& run) {
        QFile its_file(file);
        must_hold(its_file.open(QIODevice::WriteOnly) && its_file.write(bytes) == bytes.size(),
                  "there is room");
        its_file.close();
        log_import importing(db, lists);
        const bool is_taken = importing.take(file, 1, [](int) { return true; });
        must_hold(is_taken == importing.problem().isEmpty(), "it is taken, or it is said why not");
        if (is_taken) {
            tells(importing.log_id(), run);
            log_deletion going(db, {importing.log_id()});
            while (going.step()) {
            }
            must_hold(!going.has_failed(), "it goes again");
        }
        holds_nothing();
    }
};

QByteArray written(run_format::kind what, const read_run& run) {
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    const auto writer = make_run_writer(what, file);
    must_hold(write_run(*writer, run.head, run.items), "what was read can be written");
    return file.data();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const read_run run = read_timed_csv(bytes);
    must_hold(run.has_head || !run.problem.isEmpty(), "what is no such file is told");
    must_hold(run.problem.size() < 400, "what is wrong is a sentence");
    if (!run.has_head)
        return 0;
    drive_figures figures(run.head);
    for (const auto& item : run.items)
        if (const auto* sweep = std::get_if<timed_sweep>(&item)) {
            must_hold(qsizetype(sweep->values.size()) == run.head.columns.size(),
                      "a sweep has a value a column");
            figures.add(*sweep);
        }
    must_hold(figures.columns().size() == run.head.columns.size(), "each column has figures");
    for (const run_format& format : run_formats())
        written(format.what, run);
    const QByteArray again = written(run_format::kind::timed_csv, run);
    must_hold(written(run_format::kind::timed_csv, read_timed_csv(again)) == again,
              "it is read again as the same run");
    static sampled_runs store;
    store.take(bytes, run);
    return 0;
}

} // namespace brivant
