#include "base/console_log.h"
#include "livedata/actions.h"
#include "tests/support/hand_timers.h"
#include "tests/support/temporary_profile.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/elm327.h"

#include <QRegularExpression>
#include <deque>
#include <gtest/gtest.h>
#include <random>

// Long sampling runs of a virtual car behind a link on which everything goes wrong. The time of the run is
// cranked by hand, so that a late reply costs nothing. BV_SOAK_EXCHANGES asks for another length than the
// usual one.

namespace {

class blank_screen : public screen {
public:
    void show_status(const QString&) override {}
    void show_toast(const QString&) override {}
    void show_busy(bool) override {}
    void show_message(const QString&, const QString&) override {}
    void ask_yes_no(const QString&, const QString&, std::function<void(bool)> answer) override {
        answer(true);
    }
    void reload(part) override {}
    void play_sound(int) override {}
    void beep() override {}
};

// An adapter on a car; what it says is put off until deliver_next(), and suffers on the way.
class troubled_transport : public transport {
public:
    troubled_transport(const QString& car_name, std::mt19937& source) : random(source) {
        QString problem;
        auto on = virtual_adapter::load_car(car_name, problem);
        is_can = on->network().number >= 6;
        on->set_clock([this] { return seconds += 0.37; });
        adapter = std::make_unique<virtual_adapter::elm327>(on);
    }

    condition state() const override { return current; }
    void open() override {
        current = condition::open;
        Q_EMIT opened();
    }
    void close() override {
        current = condition::closed;
        on_the_way.clear();
    }
    void write(const QByteArray& command) override {
        for (const char character : command)
            if (const auto done = adapter->take(character))
                send(QByteArray::fromStdString(done->echo), QByteArray::fromStdString(done->reply));
    }

    // The next piece of text arrives; without one, time passes until the command times out.
    void deliver_next(hand_timers& clock) {
        if (on_the_way.empty())
            return clock.advance(3000);
        const piece next = on_the_way.front();
        on_the_way.pop_front();
        if (next.late_ms > 0)
            clock.advance(next.late_ms);
        if (current == condition::open)
            Q_EMIT OBDevent(QString::fromLatin1(next.text));
    }
    // Whether the car sent this as one of its latest answers to the PID.
    bool was_sent(const QString& pid, const QString& data) const { return sent.value(pid).contains(data); }

    qint64 exchanges = 0;
    bool troubled = false;

private:
    struct piece {
        QByteArray text;
        int late_ms;
    };

    bool happens(int in_a_thousand) { return troubled && int(random() % 1000) < in_a_thousand; }

    void send(const QByteArray& echo, QByteArray reply) {
        ++exchanges;
        note(reply);
        if (happens(8))
            return; // never heard of again
        if (happens(10))
            reply = without_a_line(reply);
        if (happens(10))
            reply = garbage() + reply;
        if (happens(10))
            reply.insert(qsizetype(random() % size_t(reply.size())), garbage());
        if (happens(10))
            reply.insert(qsizetype(random() % size_t(reply.size())), "\r" + garbage() + "\r");
        if (is_can && happens(5))
            reply.insert(qsizetype(random() % size_t(reply.size())), '>');
        int late_ms = happens(12) ? 1000 + int(random() % 7000) : 0;
        const bool split = happens(300);
        QByteArray text = echo + reply;
        do {
            const qsizetype length = split ? 1 + qsizetype(random() % 12) : text.size();
            on_the_way.push_back({text.first(std::min(length, text.size())), late_ms});
            text.remove(0, length);
            late_ms = happens(3) ? 3500 : 0;
        } while (!text.isEmpty());
    }

    // No hex digits: what looks like a good reply cannot be told from one.
    QByteArray garbage() {
        static const QByteArray letters = QByteArray("#?@xyz<. \t\n") + '\0' + "\xff";
        QByteArray text;
        for (auto length = 1 + random() % 6; length > 0; --length)
            text += letters[qsizetype(random() % size_t(letters.size()))];
        return text;
    }

    QByteArray without_a_line(const QByteArray& reply) {
        QList<QByteArray> lines = reply.split('\r');
        lines.removeAt(qsizetype(random() % size_t(lines.size() - 1))); // not the prompt
        return lines.join('\r');
    }

    // What the car says about each PID, by the bytes behind "41", of which the PID tells the number.
    void note(const QByteArray& reply) {
        static const QMap<QString, int> sizes{{"0C", 2}, {"0D", 1}, {"10", 2}, {"05", 1},
                                              {"11", 1}, {"14", 2}, {"0B", 1}};
        for (const QByteArray& line : reply.split('\r')) {
            const QString bare = QString::fromLatin1(line).remove(' ');
            static const QRegularExpression value("^(?:7E[89]0\\d|18DAF1..0\\d|[0-9A-F]{6})41(..)(.*)$");
            const auto found = value.match(bare);
            const QString pid = found.captured(1);
            if (!sizes.contains(pid))
                continue;
            QStringList& latest = sent[pid];
            latest += "41" + pid + found.captured(2).left(2 * sizes[pid]);
            if (latest.size() > 400) // with one PID nothing tells a late reply from the one asked for
                latest.removeFirst();
        }
    }

    std::mt19937& random;
    std::unique_ptr<virtual_adapter::elm327> adapter;
    bool is_can = false;
    double seconds = 0;
    condition current = condition::closed;
    std::deque<piece> on_the_way;
    QMap<QString, QStringList> sent;
};

class soak : private run_observer {
public:
    soak(const QString& car_name, unsigned seed) : random(seed) {
        place.choose(interface_wifi);
        profile.db.init_DB();
        state.cur_veh_id = 1;
        link =
            std::make_unique<adapter_link>(place, state, clock, view, [this, car_name](const adapter_place&) {
                auto made = std::make_unique<troubled_transport>(car_name, random);
                adapter = made.get();
                return made;
            });
        controller = std::make_unique<actions>(state, *link, toolies, view, profile.defaults, clock, results,
                                               profile.paths);
        controller->set_observer(this);
        link->set_controller(controller.get());
    }

    void run(const QStringList& pids, qint64 exchanges) {
        controller->use_pids(pids);
        while (!adapter || adapter->exchanges < exchanges) {
            if (!controller->is_running()) { // at first, and behind five time-outs
                if (adapter)
                    adapter->troubled = false; // the initialisation is not what is looked at
                controller->runLogs();
                clock.advance(800);
            }
            adapter->troubled = results.sample_cnt > 0;
            adapter->deliver_next(clock);
        }
        EXPECT_LT(bytes_held(), 1 << 20); // however long the run
        EXPECT_EQ(wrong, QStringList());
        EXPECT_GT(values, exchanges * 8 / 10);
        EXPECT_GT(missing, exchanges / 100); // the trouble was there
        EXPECT_LE(clock.running(), 3u);
    }

private:
    // What the controller and what it works with keep.
    qsizetype bytes_held() const { return results.cur_log_points.bytes() + results.pid_logitems_list.size(); }

    void set_changed() override {}
    void run_started() override {}
    void run_ended() override {}
    void sample_arrived(int index) override {
        const sample_row& row = results.these_samples[index];
        const sample_matrix& matrix = results.cur_log_points;
        const QString body = matrix.body(matrix.rows() - 1, index);
        if (body == no_reply)
            ++missing;
        else if (adapter->was_sent(row.pid, body))
            ++values;
        else if (wrong.size() < 5)
            wrong += row.pid + ": " + body;
    }
    void sweep_completed() override {}
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    std::mt19937 random;
    temporary_profile profile;
    adapter_place place;
    process_state state;
    hand_timers clock;
    blank_screen view;
    mac_toolies toolies{state, profile.defaults, profile.db};
    live_results results{[this](const QString& body) { return toolies.get_OBDVal(body); }, 1};
    troubled_transport* adapter = nullptr;
    std::unique_ptr<adapter_link> link;
    std::unique_ptr<actions> controller;
    qint64 values = 0;
    qint64 missing = 0;
    QStringList wrong;
};

qint64 length_of_a_run() {
    bool asked = false;
    const int exchanges = qEnvironmentVariableIntValue("BV_SOAK_EXCHANGES", &asked);
    return asked ? exchanges : 30000;
}

} // namespace

TEST(soak, no_wrong_value_in_a_column_whatever_goes_wrong) {
    silence_console_log();
    const QStringList pids{"0C", "0D", "10", "05", "11", "0B"};
    soak("can11", 1).run(pids + QStringList{"14"}, length_of_a_run());
    soak("can29", 2).run(pids, length_of_a_run());
    soak("kwp", 3).run(pids, length_of_a_run());
    soak("can11", 4).run({"0C"}, length_of_a_run() / 4);
}
