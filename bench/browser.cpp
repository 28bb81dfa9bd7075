// How long the log browser takes to open its list and a plot, in the real window without a display: until the
// first rows are shown, until all are in the list, and the longest time that the event loop was kept from its
// other work. The second reading of each list is the first one with everything in memory.

#include "app/logs/plots_popup.h"
#include "app/main_window.h"
#include "base/console_log.h"
#include "bench/round_counter.h"
#include "logs/log_texts.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTableView>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sqlite3.h>

using namespace brivant;

namespace {

constexpr std::array logs_in_list{100, 100'000};
constexpr int lines_of_run = 10;
constexpr std::array sweeps_in_run{1'000, 100'000, 1'000'000};

void run_sql(const database& store, const QString& sql) {
    sqlite3* db = nullptr;
    if (sqlite3_open(store.path().toUtf8().constData(), &db) != SQLITE_OK)
        give_up("the database cannot be opened");
    char* why = nullptr;
    if (sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &why) != SQLITE_OK)
        give_up(why);
    sqlite3_close(db);
}

// Logs of every kind in turn, a second apart, each with a few lines.
void store_logs(const database& store, int count) {
    run_sql(
        store,
        QStringLiteral(
            "BEGIN; DELETE FROM LOGGIES; DELETE FROM LOGGIES_DATA;"
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) INSERT INTO "
            "LOGGIES SELECT i, 1, CASE i % 3 WHEN 0 THEN 'DTC' WHEN 1 THEN 'Log' ELSE 'Mode6' END, "
            "'%2 Sample points   : 1 sec rate', datetime(1360000000 + (i * 7919) % %1, 'unixepoch') FROM n;"
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1 * %2) INSERT INTO "
            "LOGGIES_DATA SELECT i / %2, '410D30,411180,410C1AF8,41057B', i % %2, "
            "datetime(1360000000 + i, 'unixepoch'), '' FROM n; COMMIT")
            .arg(count)
            .arg(lines_of_run));
}

double ms_of(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void open_list(main_window& window, int count, const char* which) {
    window.choose_screen(screen_kind::diagnostics);
    QCoreApplication::processEvents();
    QElapsedTimer whole;
    QElapsedTimer turn;
    double first_rows = 0;
    double longest = 0;
    whole.start();
    turn.start();
    window.choose_screen(screen_kind::logs);
    const auto* table = window.findChild<QTableView*>(QStringLiteral("logs_table"));
    if (!table)
        give_up("the screen of the logs is not shown");
    for (int rows = 0; rows < count; rows = table->model()->rowCount()) {
        longest = std::max(longest, ms_of(turn));
        turn.start();
        QCoreApplication::processEvents();
        if (first_rows == 0 && table->model()->rowCount() > 0)
            first_rows = ms_of(whole);
    }
    longest = std::max(longest, ms_of(turn));
    std::printf("%8d  %-8s  %11.1f  %11.1f  %13.1f\n", count, which, first_rows, ms_of(whole), longest);
}

// A drive of four PIDs with noise, so that no two neighbours are alike.
void store_run(const database& store, int sweeps) {
    run_sql(
        store,
        QStringLiteral(
            "BEGIN; DELETE FROM LOGGIES; DELETE FROM LOGGIES_DATA;"
            "INSERT INTO LOGGIES VALUES (1, 1, 'Log', '%1 Sample points', datetime(1360000000, 'unixepoch'));"
            "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < %1 - 1) INSERT INTO "
            "LOGGIES_DATA SELECT 1, printf('410D%%02X,4111%%02X,410C%%04X,4105%%02X', (i / 90 + random() % "
            "20) & 255, "
            "(i / 50 + random() % 40) & 255, (i / 3 + random() % 900) & 16383, 60 + (i / 5000) % 80), i, "
            "datetime(1360000000 + i / 14, 'unixepoch'), '' FROM n; COMMIT")
            .arg(sweeps)
            .replace(QLatin1String("%%"), QLatin1String("%")));
}

double processor_ms() {
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// From the press of Plot until the picture is drawn, then a hundred steps of panning at a tenth of the run.
void open_plot(main_window& window, int sweeps) {
    window.choose_screen(screen_kind::diagnostics);
    window.choose_screen(screen_kind::logs);
    auto* table = window.findChild<QTableView*>(QStringLiteral("logs_table"));
    while (table->model()->rowCount() == 0)
        QCoreApplication::processEvents();
    table->selectRow(0);
    QElapsedTimer whole;
    QElapsedTimer turn;
    double longest = 0;
    whole.start();
    turn.start();
    window.findChild<QPushButton*>(QStringLiteral("plot"))->click();
    auto* plot = window.findChild<plots_popup*>();
    auto* chart = plot->findChild<plot_chart*>();
    while (chart->accessibleDescription().isEmpty()) {
        longest = std::max(longest, ms_of(turn));
        turn.start();
        QCoreApplication::processEvents();
    }
    const double opened = ms_of(whole);

    constexpr int steps = 100;
    chart->set_span(chart->span().with_count(sweeps / 10, 0));
    QCoreApplication::processEvents();
    const double before = processor_ms();
    whole.start();
    for (int i = 0; i < steps; ++i) {
        const qsizetype from = chart->span().first;
        chart->set_span(chart->span().moved(std::max(1, sweeps / 200)));
        if (chart->span().first == from)
            chart->set_span(chart->span().moved(-sweeps));
        plot->repaint();
        QCoreApplication::processEvents();
    }
    std::printf("%8d  %11.1f  %13.1f  %15.2f\n", sweeps, opened, longest, (processor_ms() - before) / steps);
    plot->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The data of a log are found by a walk through those of all logs: the one stored last takes longest.
void read_log(program_core& core, int log_id, const char* type) {
    const log_header log{log_id, 1, QLatin1String(type), {}, {}};
    QElapsedTimer timer;
    timer.start();
    if (preview_of(core.toolies, log).isEmpty())
        give_up("the log has no preview");
    const double preview = ms_of(timer);
    timer.start();
    viewLog(core.toolies, log);
    std::printf("log %d of %d stored lines: preview %.1f ms, view %.1f ms\n", log_id, log_id * lines_of_run,
                preview, ms_of(timer));
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    silence_console_log();
    const QTemporaryDir folder;
    launch_options options;
    options.profile = folder.path();
    program_core core(options);
    main_window window(core);
    window.start();
    window.show();
    std::printf("%8s  %-8s  %11s  %11s  %13s\n", "logs", "reading", "first rows", "all rows", "longest turn");
    std::printf("%8s  %-8s  %11s  %11s  %13s\n", "", "", "ms", "ms", "ms");
    for (const int count : logs_in_list) {
        store_logs(core.db, count);
        open_list(window, count, "first");
        open_list(window, count, "second");
    }
    read_log(core, logs_in_list.back(), "DTC");
    read_log(core, logs_in_list.back() - 1, "Log");

    std::printf("\n%8s  %11s  %13s  %15s\n", "sweeps", "plot open", "longest turn", "a step of a pan");
    std::printf("%8s  %11s  %13s  %15s\n", "", "ms", "ms", "ms of processor");
    for (const int sweeps : sweeps_in_run) {
        store_run(core.db, sweeps);
        open_plot(window, sweeps);
    }
}
