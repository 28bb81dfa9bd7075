#include "base/console_log.h"
#include "livedata/actions.h"
#include "tests/support/print_qt.h"
#include "tests/support/recording_screen.h"
#include "tests/support/temporary_profile.h"
#include "tests/support/virtual_time.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/kinds.h"

#include <gtest/gtest.h>
#include <random>

namespace brivant {

// Fast runs on adapters that do wrong what only fast clients ask for. The car's clock goes on with each
// request to it, so that a value tells which request it answers: each must be that of the request just made,
// of its own PID and its own ECU. BV_SOAK_SAMPLES asks for another length than the usual one.

namespace {

using virtual_adapter::car;

// One that loses the rest of a reply, garbles and cuts some of what is said, and counts the requests to the
// car. Hexadecimal digits are not lost without a trace: what then looks like a good frame cannot be told from
// one.
class troubled_transport : public timed_transport {
public:
    troubled_transport(virtual_time& its_clock, int& its_requests, const std::shared_ptr<car>& on,
                       const virtual_adapter::adapter_options& options,
                       const virtual_adapter::clone_faults& faults, unsigned seed)
        : timed_transport(its_clock, on, options, faults), requests(its_requests), random(seed) {}

    void write(const QByteArray& command) override {
        requests += command.startsWith("01");
        is_lost = false;
        timed_transport::write(command);
    }

protected:
    std::string passed(std::string text) override {
        is_lost = is_lost || happens(2);
        if (is_lost)
            return {};
        if (happens(3))
            text.replace(0, text.size() - 1, "#?");
        if (happens(3))
            text.insert(random() % text.size(), "#?");
        if (happens(2))
            text.insert(random() % text.size(), "\r");
        return text;
    }

private:
    bool happens(int in_a_thousand) { return int(random() % 1000) < in_a_thousand; }

    int& requests;
    std::mt19937 random;
    bool is_lost = false; // what else is said to the command
};

class fast_soak : private run_observer {
public:
    fast_soak(const char* its_car, const char* kind, const virtual_adapter::clone_faults& faults,
              unsigned seed)
        : on(car_named(its_car)), reference(car_named(its_car)) {
        silence_console_log();
        place.choose(interface_wifi);
        profile.db.init_DB();
        state.make_current(1, {});
        profile.defaults.set(setting::sampling_speed, 2);
        profile.defaults.set(setting::pid_rates, QStringList{"1F/1", "05/3"});
        on->set_clock([this] { return double(requests); });
        reference->set_clock([this] { return double(asked_at); });
        auto options = *virtual_adapter::adapter_of_kind(kind);
        options.time->ecu_spread_ms = 40; // some answers are late
        make = [this, options, faults, seed](const adapter_place&) {
            return std::make_unique<troubled_transport>(clock, requests, on, options, faults, seed);
        };
        controller.set_observer(this);
        link.set_controller(&controller);
    }
    ~fast_soak() override { link.set_controller(nullptr); }

    void run(const QStringList& items, qint64 wanted) {
        controller.use_pids(items);
        // A run that is disturbed before its first value ends, and is begun again by the person.
        for (int tries = 0; tries < 5 && values < wanted; ++tries) {
            if (!controller.is_running())
                controller.runLogs();
            clock.pass(1e9, [&] { return values >= wanted || !controller.is_running(); });
        }
        EXPECT_TRUE(controller.is_running()) << view.last("status").toStdString();
        controller.stop();
    }

    qint64 values = 0;
    qint64 missed = 0;
    QStringList wrong;

private:
    static std::shared_ptr<car> car_named(const char* name) {
        QString problem;
        return virtual_adapter::load_car(QString::fromLatin1(name), problem);
    }
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override {}
    void sample_arrived(int column) override {
        const QString body = live.cur_log_points.body(live.cur_log_points.rows() - 1, column);
        if (body == no_reply) {
            ++missed;
            return;
        }
        ++values;
        asked_at = requests;
        const QString& item = live.these_samples.at(column).item;
        const QString told = answer_of(item.section('|', 0, 0), item.section('|', 1));
        if (body != told && wrong.size() < 5)
            wrong += QString("%1: %2, not %3").arg(item, body, told);
    }
    void sweep_completed() override {}
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    QString answer_of(const QString& pid, const QString& ecu) const {
        const std::uint8_t request[] = {0x01, static_cast<std::uint8_t>(pid.toInt(nullptr, 16))};
        for (const virtual_adapter::answer& answer : reference->ask(request))
            if (ecu.endsWith(QString::number(answer.address, 16).toUpper()))
                return QByteArray(reinterpret_cast<const char*>(answer.messages.front().data()),
                                  qsizetype(answer.messages.front().size()))
                    .toHex()
                    .toUpper();
        return "nothing";
    }

    std::shared_ptr<car> on;
    std::shared_ptr<car> reference;
    int requests = 0;
    int asked_at = 0;
    std::function<std::unique_ptr<transport>(const adapter_place&)> make;
    temporary_profile profile;
    adapter_place place;
    adapter_facts facts;
    car_state state;
    virtual_time clock;
    recording_screen view;
    adapter_link link{place, facts, clock, view, [this](const adapter_place& where) { return make(where); }};
    mac_toolies toolies{facts, state, profile.defaults, profile.db};
    live_results live{[this](const QString& body) { return toolies.get_OBDVal(body); }, 1};
    actions controller{state, link, toolies, view, profile.defaults, clock, live, profile.paths};
};

} // namespace

TEST(fast_soak, no_value_is_of_another_pid_ecu_or_request) {
    const QByteArray length = qgetenv("BV_SOAK_SAMPLES");
    const qint64 each = (length.isEmpty() ? 20'000 : length.toLongLong()) / 40;
    unsigned seed = 1;
    for (const char* name : {"can11", "can29"}) {
        const bool is_wide = QByteArray(name) == "can29";
        const QStringList items =
            QString("0C|7E8 0D|7E8 04|7E8 05|7E8 1F|7E8 0B|7E8 11|7E8 0E|7E8 06|7E8 0C|7E9 0D|7E9")
                .replace("7E8", is_wide ? "18DAF110" : "7E8")
                .replace("7E9", is_wide ? "18DAF118" : "7E9")
                .split(' ');
        for (const char* kind : {"clone-2.1", "stn"}) {
            std::vector<std::string> faults{"none", "order drop cut", "no-count hang"};
            for (const std::string_view fault : virtual_adapter::clone_faults::names())
                faults.emplace_back(fault);
            for (const std::string& words : faults) {
                virtual_adapter::clone_faults what;
                for (const QString& word : QString::fromStdString(words).split(' '))
                    what.add(word.toStdString());
                fast_soak soak(name, kind, what, ++seed);
                soak.run(items, each);
                EXPECT_EQ(soak.wrong.join("; "), "") << name << ' ' << kind << ' ' << words;
                EXPECT_GT(soak.values, 5 * soak.missed) << name << ' ' << kind << ' ' << words;
            }
        }
    }
}

} // namespace brivant
