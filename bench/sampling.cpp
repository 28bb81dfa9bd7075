// A Log Run of four PIDs: how many commands a second go to an adapter and come back as a value in the matrix,
// through the whole controller; the same with the window, drawn off screen; the same with every sweep stored;
// and what storing a sweep takes. Beside them a bare socket that sends the next command as soon as the prompt
// is there: what adapter, network and event loop allow. All talk to the same virtual adapter and take turns.
// Run a release build on an otherwise idle machine.
//
// With a number of exchanges ("bench_sampling 200000") one long run is made first, and what it takes in
// memory is told at a tenth of it and at its end.

#include "app/main_window.h"
#include "base/console_log.h"
#include "bench/bare_socket.h"
#include "livedata/actions.h"
#include "persistence/stored_moments.h"
#include "shell/program_core.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <vector>

using namespace brivant;

namespace {

const QByteArrayList asked_for{"01 0D\r", "01 11\r", "01 0C\r", "01 05\r"};

// Kilobytes of memory that the process holds.
qint64 memory_kb() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
}

class program : private run_observer {
public:
    program(program_core& core, adapter_link& its_link, screen& view)
        : results(core.live), controller(core.car, its_link, core.toolies, view, core.defaults, core.clock,
                                         core.live, core.paths) {
        controller.set_observer(this);
        its_link.set_controller(&controller);
        controller.use_pids(
            {QStringLiteral("0D"), QStringLiteral("11"), QStringLiteral("0C"), QStringLiteral("05")});
    }

    double run(qint64 exchanges = -1) {
        const double rate = counter.run([this] { controller.runLogs(); }, exchanges);
        if (controller.is_running())
            controller.runLogs();
        return rate;
    }
    QString last_value() const { return results.these_samples.last().value; }
    qint64 memory_at_a_tenth = 0;
    qint64 a_tenth = 0;

private:
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override {}
    void sample_arrived(int) override {
        if (counter.so_far() == a_tenth)
            memory_at_a_tenth = memory_kb();
        if (!counter.next())
            controller.runLogs();
    }
    void sweep_completed() override {}
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    live_results& results;
    actions controller;
    round_counter counter;
};

// The program as a person has it: the live-data screen of the window, with its default PIDs. Idle until a
// round.
class window_program {
public:
    explicit window_program(const launch_options& options) : core(options), window(core) {
        window.start();
        window.resize(1180, 760);
        window.show();
        button = window.findChild<QPushButton*>(QStringLiteral("run"));
        QObject::connect(&tick, &QTimer::timeout, [this] { look(); });
    }

    double run() {
        begun = false;
        button->click();
        tick.start(5);
        loop.exec();
        tick.stop();
        button->click();
        return static_cast<double>(core.live.sample_cnt - first) * asked_for.size() * 1e9 /
               static_cast<double>(elapsed_ns);
    }

private:
    void look() {
        if (!begun && core.live.sample_cnt == 0)
            return;
        if (!std::exchange(begun, true)) {
            first = core.live.sample_cnt;
            clock.start();
        }
        elapsed_ns = clock.nsecsElapsed();
        if (elapsed_ns >= round_ms * 1'000'000)
            loop.quit();
    }

    program_core core;
    main_window window;
    QPushButton* button = nullptr;
    QEventLoop loop;
    QTimer tick;
    QElapsedTimer clock;
    bool begun = false;
    qint64 first = 0;
    qint64 elapsed_ns = 1;
};

double at(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(share * static_cast<double>(values.size() - 1))];
}

double median(const std::vector<double>& values) {
    return at(values, 0.5);
}

struct stored_sweeps {
    std::vector<double> times; // milliseconds of each
    double bytes = 0;          // of the database, a sweep
};

// In a database of its own.
stored_sweeps store_sweeps(int sweeps, bool with_moments) {
    const QTemporaryDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/stored-XXXXXX"));
    database db(folder.path());
    if (!db.init_DB() || !db.add_own_parts())
        give_up(db.problem());
    const int log = db.add_2_LOG_DB(QStringLiteral("Log"), 1, QStringLiteral("sample points"));
    db.begin_lines();
    stored_sweeps stored;
    QElapsedTimer clock;
    for (int line = 0; line < sweeps; ++line) {
        clock.start();
        const bool is_stored = db.change([&](sqlite_connection&) {
            const auto text = QStringLiteral("410D3C,41112A,410C1AF8,41057B");
            return db.append_2_LOG_DB(text, QString(), line, log) > 0 &&
                   (!with_moments || store_moment(db, log, line, {71.4 * line, {15.37, 33.41, 51.02, 68.8}}));
        });
        if (!is_stored)
            give_up(db.problem());
        stored.times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    db.end_lines();
    stored.bytes = static_cast<double>(QFileInfo(db.path()).size()) / sweeps;
    return stored;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    // Beside the program, since /tmp may be in memory: what storing waits for is the disk.
    const QTemporaryDir profile(QCoreApplication::applicationDirPath() + QStringLiteral("/profile-XXXXXX"));
    QProcess adapter;
    const quint16 port = start_adapter(adapter);
    program_core core(options_for(port, profile.path()));
    core.choose_link();
    redirect_console_log(core.paths.documents + QStringLiteral("/console.log"));
    if (!core.db.init_DB())
        give_up(core.db.problem());
    core.car.make_current(1, {});

    quiet_screen view;
    adapter_link link(core.place, core.adapter, core.clock, view, make_transport);
    program run(core, link, view);
    const auto storing = [&core](bool on) { core.defaults.set(setting::log_runs, on); };
    storing(false);
    if (argc > 1) {
        const qint64 exchanges = QByteArray(argv[1]).toLongLong();
        run.a_tenth = exchanges / 10;
        const double rate = run.run(exchanges);
        std::printf(
            "one run of %-10lld  %8.0f a second, %lld KiB of memory at a tenth of it, %lld KiB at its end\n",
            static_cast<long long>(exchanges), rate, static_cast<long long>(run.memory_at_a_tenth),
            static_cast<long long>(memory_kb()));
    }
    bare_socket bare(port, asked_for);
    const QTemporaryDir window_profile;
    window_program in_window(options_for(port, window_profile.path()));
    std::vector<double> with_program, with_window, with_storing, without, ratios, window_ratios,
        storing_ratios;
    run.run(), in_window.run(), bare.run(); // warm
    for (int i = 0; i < rounds; ++i) {
        storing(false);
        with_program.push_back(run.run());
        without.push_back(bare.run());
        storing(true);
        with_storing.push_back(run.run());
        with_window.push_back(in_window.run());
        ratios.push_back(with_program.back() / without.back());
        window_ratios.push_back(with_window.back() / without.back());
        storing_ratios.push_back(with_storing.back() / without.back());
    }
    link.set_controller(nullptr);
    link.disconnect();
    adapter.kill();
    adapter.waitForFinished();
    const stored_sweeps plain = store_sweeps(20'000, false);
    const stored_sweeps timed = store_sweeps(20'000, true);
    const std::vector<double>& stored = timed.times;

    std::printf("Log Run of four PIDs   %8.0f exchanges a second (last: %s)\n", median(with_program),
                qPrintable(run.last_value()));
    std::printf("the same in the window %8.0f exchanges a second\n", median(with_window));
    std::printf("the same, stored       %8.0f exchanges a second\n", median(with_storing));
    std::printf("bare socket            %8.0f exchanges a second\n", median(without));
    std::printf("ratio, pair by pair    %8.2f, in the window %.2f, stored %.2f (medians of %d)\n",
                median(ratios), median(window_ratios), median(storing_ratios), rounds);
    std::printf("storing one sweep      %8.2f ms median, %.2f ms nine times in ten, %.2f ms at most\n",
                median(stored), at(stored, 0.9), at(stored, 1));
    std::printf("with its moments       %8.2f of the time without, %.2f of the bytes\n",
                median(timed.times) / median(plain.times), timed.bytes / plain.bytes);
    return 0;
}
