// How well the program tells when a value was true. A stand-in for an adapter takes some time for each
// request, half of it before it looks at the car and half after, each half with a jitter of its own, and the
// car's values tell when it did: engine speed is the milliseconds since the start, vehicle speed a sine.
// Beside the error of the stored moments, as root of the mean square, that of the seconds at which the lines
// were stored, which is all that a log of an older version has; and what the sine is off for having been put
// at these times.

#include "base/console_log.h"
#include "bench/bare_socket.h"
#include "livedata/actions.h"
#include "persistence/stored_run.h"
#include "shell/program_core.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>
#include <cmath>
#include <cstdio>

using namespace brivant;

namespace {

constexpr int sweeps_a_run = 60;
constexpr double sine_ms = 4000, sine_kmh = 60;

double kmh_at(double ms) {
    return 100 + sine_kmh * std::sin(2 * M_PI * ms / sine_ms);
}

class slow_car : public transport {
public:
    slow_car(int its_delay_ms, int its_jitter_ms, const QElapsedTimer& its_time)
        : delay(its_delay_ms), jitter(its_jitter_ms), time(its_time) {}

    condition state() const override { return now; }
    void open() override {
        now = condition::open;
        Q_EMIT opened();
    }
    void close() override { now = condition::closed; }
    void write(const QByteArray& command) override {
        const QByteArray asked = QByteArray(command).trimmed().replace(' ', "");
        if (!asked.startsWith("010C") && !asked.startsWith("010D"))
            return answer_at_once(asked);
        QTimer::singleShot(half(), Qt::PreciseTimer, this, [this, asked] {
            const double ms = static_cast<double>(time.nsecsElapsed()) / 1e6;
            const QByteArray said = body(asked, ms);
            QTimer::singleShot(half(), Qt::PreciseTimer, this,
                               [this, said] { Q_EMIT OBDevent(QString::fromLatin1(said + "\r\r>")); });
        });
    }

private:
    int half() const {
        return std::max(0, delay / 2 + QRandomGenerator::global()->bounded(jitter + 1) - jitter / 2);
    }
    static QByteArray body(const QByteArray& asked, double ms) {
        if (asked.startsWith("010C"))
            return "7E8 04 41 0C " +
                   QByteArray::number(0x10000 + std::lround(ms) % 0x10000, 16).sliced(1).insert(2, ' ');
        return "7E8 03 41 0D " + QByteArray::number(0x100 + std::lround(kmh_at(ms)), 16).sliced(1);
    }
    void answer_at_once(const QByteArray& asked) {
        const QByteArray said = asked == "ATZ" || asked == "ATI" ? "ELM327 v1.5"
                                : asked == "ATDP"                ? "AUTO"
                                : asked == "ATDPN"               ? "A6"
                                : asked == "ATRV"                ? "12.6V"
                                : asked.startsWith("AT")         ? "OK"
                                : asked.startsWith("0100")       ? "7E8 06 41 00 00 18 00 00 "
                                                                 : "NO DATA";
        QTimer::singleShot(0, this, [this, said] { Q_EMIT OBDevent(QString::fromLatin1(said + "\r\r>")); });
    }

    const int delay;
    const int jitter;
    const QElapsedTimer& time;
    condition now = condition::closed;
};

struct mean_square {
    double sum = 0;
    int count = 0;
    void add(double error) {
        sum += error * error;
        ++count;
    }
    double root() const { return count > 0 ? std::sqrt(sum / count) : NAN; }
};

class measured_run : private run_observer {
public:
    measured_run(program_core& its_core, int delay, int jitter)
        : core(its_core), link(core.place, core.adapter, core.clock, view,
                               [this, delay, jitter](const adapter_place&) {
                                   return std::make_unique<slow_car>(delay, jitter, time);
                               }),
          controller(core.car, link, core.toolies, view, core.defaults, core.clock, core.live, core.paths) {
        controller.set_observer(this);
        link.set_controller(&controller);
        controller.use_pids({QStringLiteral("0C"), QStringLiteral("0D")});
    }
    ~measured_run() override { link.set_controller(nullptr); }

    // The number of the stored run.
    int log() {
        time.start();
        started_utc = QDateTime::currentMSecsSinceEpoch();
        controller.runLogs();
        loop.exec();
        return core.live.log_id;
    }
    qint64 started_utc = 0;

private:
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override { loop.quit(); }
    void sample_arrived(int) override {}
    void sweep_completed() override {
        if (core.live.sample_cnt == sweeps_a_run)
            QTimer::singleShot(0, &loop, [this] { controller.runLogs(); });
    }
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    program_core& core;
    quiet_screen view;
    QElapsedTimer time;
    QEventLoop loop;
    adapter_link link;
    actions controller;
};

void measure(program_core& core, int delay, int jitter) {
    measured_run run(core, delay, jitter);
    const auto log = log_with_id(core.db, run.log());
    if (!log)
        give_up(QStringLiteral("the run was not stored: ") + core.db.problem());
    text_resources lists;
    stored_run stored(core.db, *log, lists, {unit_system::metric, false});
    core.db.for_each_row(stored.statement(),
                         [&](const QStringList& row) { return !stored.tell_columns(row); });
    const run_head head = stored.head({});
    const double offset = static_cast<double>(head.start_ms - run.started_utc);
    mean_square moments, values, seconds, second_values;
    core.db.for_each_row(stored.statement(), [&](const QStringList& row) {
        const timed_sweep sweep = stored.sweep_of(row);
        const QDateTime stamp = QDateTime::fromString(row.value(chunk_time_stamp) + QStringLiteral("Z"),
                                                      QStringLiteral("yyyy-MM-dd HH:mm:sst"));
        const double stored_ms = static_cast<double>(stamp.toMSecsSinceEpoch() - run.started_utc);
        const double truth = sweep.values[0].value_or(NAN) * 4; // rpm are quarters
        moments.add(offset + sweep.ms + sweep.offsets_ms[0] - truth);
        seconds.add(stored_ms - truth);
        values.add(kmh_at(offset + sweep.ms + sweep.offsets_ms[1]) - sweep.values[1].value_or(NAN));
        second_values.add(kmh_at(stored_ms) - sweep.values[1].value_or(NAN));
        return true;
    });
    std::printf("%5d  %6d  %8.2f ms  %8.2f ms  %10.2f km/h  %10.2f km/h\n", delay, jitter, moments.root(),
                seconds.root(), values.root(), second_values.root());
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    silence_console_log();
    const QTemporaryDir profile;
    program_core core(options_for(1, profile.path()));
    core.choose_link();
    if (!core.db.init_DB())
        give_up(core.db.problem());
    core.car.make_current(1, {});
    core.defaults.set(setting::log_runs, true);
    core.defaults.set(setting::metric_units, true);
    std::printf("delay  jitter  moments      seconds      speed by moments  by seconds\n");
    for (const auto& [delay, jitter] : {std::pair(5, 1), {30, 5}, {60, 20}, {120, 40}})
        measure(core, delay, jitter);
}
