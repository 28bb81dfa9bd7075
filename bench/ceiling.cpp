// Values a second of sampling runs, for each kind of adapter, one and two ECUs, and 4, 8 and 16 PIDs: with
// one PID a request, with the fast option on, and by a plain client that asks for one PID a request with
// blanks off and a learnt count of frames. Beside them what the adapter and the car allow at most. Everything
// runs in virtual time, so that the figures are the same on any machine.

#include "tools/virtual_adapter/ceiling.h"
#include "base/console_log.h"
#include "bench/round_counter.h"
#include "livedata/actions.h"
#include "shell/program_core.h"
#include "tests/support/virtual_time.h"
#include "tools/virtual_adapter/car_file.h"
#include "tools/virtual_adapter/kinds.h"

#include <QCoreApplication>
#include <QTemporaryDir>

using namespace brivant;
using virtual_adapter::adapter_options;

namespace {

constexpr double settling_ms = 20'000; // of virtual time, in which a run learns
constexpr double measured_ms = 60'000;
const std::vector<std::uint8_t> all_pids{0x0C, 0x0D, 0x04, 0x0B, 0x0E, 0x10, 0x11, 0x14,
                                         0x15, 0x2E, 0x42, 0x43, 0x44, 0x45, 0x47, 0x49};

QString text_of(std::uint8_t pid) {
    return QString::number(pid, 16).toUpper().rightJustified(2, u'0');
}

// Every second PID belongs to the second ECU where there are two.
std::shared_ptr<virtual_adapter::car> car_of(int ecus) {
    std::string text = "name Bench\nprotocol 6\nbattery 14.1\nengine petrol 2.0 60\n";
    for (int ecu = 0; ecu < ecus; ++ecu) {
        text += ecu == 0 ? "\necu 7E8\n" : "\necu 7E9\n";
        for (size_t place = 0; place < all_pids.size(); ++place)
            if (static_cast<int>(place) % ecus == ecu)
                text += "pid " + text_of(all_pids[place]).toStdString() + " live\n";
    }
    std::string problem;
    const auto description = virtual_adapter::parse_car(text, problem);
    if (!description)
        give_up(QString::fromStdString(problem));
    return std::make_shared<virtual_adapter::car>(*description);
}

struct measured {
    double values_per_second = 0;
    qint64 values = 0;
    qint64 missed = 0;
};

// The whole program, from the controller of the live-data screen down.
class program : private run_observer {
public:
    program(const adapter_options& kind, const std::shared_ptr<virtual_adapter::car>& on, int speed)
        : core(options()), link(core.place, core.adapter, clock, view, [&](const adapter_place&) {
              return std::make_unique<timed_transport>(clock, on, kind);
          }) {
        core.choose_link();
        if (!core.db.init_DB())
            give_up(core.db.problem());
        core.car.make_current(1, {});
        core.defaults.set(setting::log_runs, false);
        core.defaults.set(setting::sampling_speed, speed);
        controller = std::make_unique<actions>(core.car, link, core.toolies, view, core.defaults, clock,
                                               core.live, core.paths);
        controller->set_observer(this);
        link.set_controller(controller.get());
    }
    ~program() override { link.set_controller(nullptr); }

    measured run(const QStringList& items) {
        controller->use_pids(items);
        controller->runLogs();
        if (!clock.pass(120'000, [this] { return core.live.sample_cnt > 0; }))
            give_up(QStringLiteral("the run does not begin"));
        clock.pass(settling_ms, [] { return false; });
        so_far = {};
        clock.pass(measured_ms, [] { return false; });
        so_far.values_per_second = static_cast<double>(so_far.values) * 1000 / measured_ms;
        controller->stop();
        clock.pass(5000, [this] { return !controller->will_put_back(); });
        return so_far;
    }

private:
    launch_options options() const {
        launch_options its;
        its.link = launch_options::link_choice::given;
        its.address = {interface_wifi, QStringLiteral("127.0.0.1"), 35000};
        its.profile = folder.path();
        return its;
    }
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override {}
    void sample_arrived(int index) override {
        ++(core.live.these_samples.at(index).value == no_reply ? so_far.missed : so_far.values);
    }
    void sweep_completed() override {}
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    const QTemporaryDir folder;
    virtual_time clock;
    program_core core;
    quiet_screen view;
    adapter_link link;
    std::unique_ptr<actions> controller;
    measured so_far;
};

// One PID a request to every ECU, the frames counted.
double plain_client(const adapter_options& kind, const std::shared_ptr<virtual_adapter::car>& on,
                    const std::vector<std::uint8_t>& pids) {
    virtual_adapter::timed_adapter adapter(on, kind);
    double now_ms = 0;
    const auto ask = [&](const std::string& command) {
        std::string text;
        for (const virtual_adapter::timed_text& piece : adapter.send(command + '\r', now_ms)) {
            now_ms = piece.at_ms;
            text += piece.text;
        }
        return text;
    };
    for (const char* command : {"ATZ", "ATE0", "ATH1", "ATL0", "ATS0", "0100"})
        ask(command);
    std::vector<std::string> requests;
    for (const std::uint8_t pid : pids) {
        const std::string request = "01" + text_of(pid).toStdString();
        const QString said = QString::fromStdString(ask(request));
        requests.push_back(request + std::to_string(said.count(QStringLiteral("7E"))));
    }
    const double began_ms = now_ms;
    qint64 values = 0;
    while (now_ms < began_ms + measured_ms)
        values += ask(requests[static_cast<size_t>(values) % requests.size()]).size() > 1;
    return static_cast<double>(values) * 1000 / (now_ms - began_ms);
}

void measure(std::string_view name, int ecus, size_t count) {
    const auto on = car_of(ecus);
    adapter_options kind = *virtual_adapter::adapter_of_kind(name);
    const std::vector<std::uint8_t> pids(all_pids.begin(), all_pids.begin() + static_cast<qsizetype>(count));
    QStringList items;
    for (size_t place = 0; place < count; ++place)
        items += text_of(pids[place]) + (static_cast<int>(place) % ecus == 0 ? "|7E8" : "|7E9");
    const double most = virtual_adapter::ceiling_of(on, kind, pids).values_per_second;
    const measured usual = program(kind, on, 0).run(items);
    const measured fast = program(kind, on, 2).run(items);
    const double plain = plain_client(kind, on, pids);
    std::printf("%-12s %4d ECU%c %3zu PIDs  %7.1f at most  %6.1f usual  %6.1f plain  %6.1f fast  "
                "%.2f of the most, %.1f times plain, %lld missed\n",
                std::string(name).c_str(), ecus, ecus == 1 ? ' ' : 's', count, most, usual.values_per_second,
                plain, fast.values_per_second, fast.values_per_second / most, fast.values_per_second / plain,
                static_cast<long long>(fast.missed));
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    silence_console_log();
    for (const std::string_view name : virtual_adapter::adapter_kinds())
        for (const int ecus : {1, 2})
            for (const size_t count : {4, 8, 16})
                measure(name, ecus, count);
    return 0;
}
