// How fast stored sampling runs are written to files, and with how much memory: three logs, each ten times
// the one before. The processor time a line must stay the same, and the peak of the memory where it was.

#include "base/console_log.h"
#include "persistence/log_export.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sqlite3.h>
#include <sys/resource.h>

using namespace brivant;

namespace {

constexpr int lines_a_slice = 2000;
constexpr std::array lines_of_log{10'000, 100'000, 1'000'000};

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

void run(sqlite3* db, const char* sql) {
    if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        give_up(sqlite3_errmsg(db));
}

// A sweep of speed, throttle, engine speed and coolant temperature a second.
void store_lines(const database& store, int log_id, int lines) {
    sqlite3* db = nullptr;
    if (sqlite3_open(store.path().toUtf8().constData(), &db) != SQLITE_OK)
        give_up("the database cannot be opened");
    run(db, "BEGIN");
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO LOGGIES_DATA (LOG_ID, DATA, LINE_NUMBER, time_stamp, DATA2) "
                       "VALUES (?, ?, ?, datetime(1360000000 + ?3, 'unixepoch'), '')",
                       -1, &insert, nullptr);
    for (int line = 0; line < lines; ++line) {
        char data[64];
        const int size = std::snprintf(data, sizeof data, "410D%02X,4111%02X,410C%04X,4105%02X", line % 200,
                                       line % 256, line % 0x4000, 40 + line % 90);
        sqlite3_bind_int(insert, 1, log_id);
        sqlite3_bind_text(insert, 2, data, size, SQLITE_STATIC);
        sqlite3_bind_int(insert, 3, line);
        if (sqlite3_step(insert) != SQLITE_DONE)
            give_up(sqlite3_errmsg(db));
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    run(db, "COMMIT");
    sqlite3_close(db);
}

long peak_memory_kib() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int main() {
    silence_console_log();
    const QTemporaryDir folder;
    database store(folder.path());
    if (!store.init_DB())
        give_up(qPrintable(store.problem()));
    const text_resources lists;
    std::printf("%9s  %9s  %9s  %11s  %11s  %8s\n", "lines", "ms", "lines/s", "cpu us/line", "slice (max)",
                "peak KiB");
    for (const int lines : lines_of_log) {
        const int log_id = store.add_2_LOG_DB(QStringLiteral("Log"), 1, QStringLiteral("sample points"));
        store_lines(store, log_id, lines);

        const export_settings settings{.documents = folder.path(),
                                       .application_folder = folder.path() + QStringLiteral("/app"),
                                       .time_column = true};
        log_export exporting(store, lists, settings);
        QElapsedTimer whole;
        QElapsedTimer slice;
        qint64 longest = 0;
        const std::clock_t cpu = std::clock();
        whole.start();
        if (!exporting.begin(log_id, false))
            give_up(qPrintable(exporting.problem()));
        for (bool more = true; more; longest = std::max(longest, slice.nsecsElapsed())) {
            slice.start();
            more = exporting.step(lines_a_slice);
        }
        const double ms = static_cast<double>(whole.nsecsElapsed()) / 1e6;
        const double cpu_us = 1e6 * static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC;
        if (!exporting.succeeded() || exporting.lines_written() != lines)
            give_up(qPrintable(exporting.problem()));
        std::printf("%9d  %9.1f  %9.0f  %11.2f  %8.1f ms  %8ld\n", lines, ms, lines / ms * 1000,
                    cpu_us / lines, static_cast<double>(longest) / 1e6, peak_memory_kib());
    }
}
