#include "tests/fault_matrix/matrix_bench.h"

#include <gtest/gtest.h>
#include <random>

namespace brivant {

// Long sampling runs behind a link on which everything goes wrong: a steady car's PIDs each have one value,
// so that any other in a column is wrong. BV_SOAK_EXCHANGES asks for another length than the usual one.

namespace {

class troubled_line {
public:
    troubled_line(unsigned seed, bool on_can) : random(seed), is_can(on_can) {}

    qint64 exchanges = 0;

    std::vector<in_process_adapter::piece> pass(QByteArray text) {
        exchanges += text.contains('>');
        if (happens(8))
            return {}; // never heard of again
        if (happens(10))
            text = without_a_line(text);
        if (happens(10))
            text = garbage() + text;
        if (happens(10))
            text.insert(place_in(text), garbage());
        if (happens(10))
            text.insert(place_in(text), "\r" + garbage() + "\r");
        if (is_can && happens(5))
            text.insert(place_in(text), '>');
        std::vector<in_process_adapter::piece> pieces;
        int late_ms = happens(12) ? 1000 + int(random() % 7000) : 0;
        const bool is_split = happens(300);
        do {
            const qsizetype length = is_split ? 1 + qsizetype(random() % 12) : text.size();
            pieces.push_back({text.first(std::min(length, text.size())).toStdString(), late_ms});
            text.remove(0, length);
            late_ms = happens(3) ? 3500 : 0;
        } while (!text.isEmpty());
        return pieces;
    }

private:
    bool happens(int in_a_thousand) { return int(random() % 1000) < in_a_thousand; }
    qsizetype place_in(const QByteArray& text) { return qsizetype(random() % size_t(text.size())); }
    // No hex digits: what looks like a good reply cannot be told from one.
    QByteArray garbage() {
        static const QByteArray letters("#?@xyz<. \t\n\0\xff", 13);
        QByteArray text;
        for (auto length = 1 + random() % 6; length > 0; --length)
            text += letters[place_in(letters)];
        return text;
    }
    QByteArray without_a_line(const QByteArray& reply) {
        QList<QByteArray> lines = reply.split('\r');
        if (lines.size() > 1)
            lines.removeAt(qsizetype(random() % size_t(lines.size() - 1))); // not the prompt
        return lines.join('\r');
    }

    std::mt19937 random;
    const bool is_can;
};

void soak(const char* car, unsigned seed, const QStringList& pids, qint64 exchanges) {
    SCOPED_TRACE(car);
    matrix_bench bench(steady_car(car));
    bench.profile.defaults.set(setting::log_runs, false);
    bench.on_sweep = [] {}; // nobody stops it
    bench.begin(bench.live_controller);
    bench.live_controller.use_pids(pids);
    bench.live_controller.runLogs();
    bench.pump_until([&] { return bench.live.sample_cnt >= 2; });
    const std::set<QString> values = bench.columns;
    ASSERT_EQ(values.size(), size_t(pids.size()));

    troubled_line line(seed, bench.facts.cur_protocol() >= 6);
    while (line.exchanges < exchanges) {
        if (!bench.is_running()) // behind five time-outs at the start
            bench.live_controller.runLogs();
        bench.adapter->trouble = [&](const std::string& text) -> std::vector<in_process_adapter::piece> {
            if (!bench.facts.adapter_ready()) // the initialisation is not what is looked at
                return {{text}};
            return line.pass(QByteArray::fromStdString(text));
        };
        bench.step();
    }
    EXPECT_EQ(bench.columns, values);
    EXPECT_GT(bench.missing, exchanges / 100); // the trouble was there
    EXPECT_LT(bench.missing, exchanges / 5);
    EXPECT_LE(bench.clock.running(), 4u);
}

} // namespace

TEST(soak, no_wrong_value_in_a_column_whatever_goes_wrong) {
    bool asked = false;
    const int length = qEnvironmentVariableIntValue("BV_SOAK_EXCHANGES", &asked);
    const qint64 exchanges = asked ? length : 30000;
    const QStringList pids{"0C", "0D", "10", "05", "11", "0B"};
    soak("can11", 1, pids + QStringList{"14"}, exchanges);
    soak("can29", 2, pids, exchanges);
    soak("kwp", 3, pids, exchanges);
    soak("can11", 4, {"0C"}, exchanges / 4);
}

} // namespace brivant
