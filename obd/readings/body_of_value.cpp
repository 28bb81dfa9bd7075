#include "obd/readings/body_of_value.h"

#include "base/string_table.h"
#include "obd/obd_messages.h"
#include "obd/readings/sweep_values.h"
#include "obd/standard_reading/pid_table.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace brivant {

namespace {

constexpr qsizetype most_met = 70'000; // of a column

// The data bytes of a PID, as far as its quantities reach; 0 where the table has none.
int bytes_of(int pid) {
    int bytes = 0;
    for (const quantity_row& row : quantity_rows())
        if (row.pid == first_of_run(pid))
            bytes = std::max(bytes, row.at + row.bytes);
    return bytes;
}

QString body(const QString& pid, int bytes, int at, int width, quint8 fill, quint64 raw) {
    QByteArray data(bytes, static_cast<char>(fill));
    for (int i = 0; i < width; ++i)
        data[at + i] = static_cast<char>(raw >> (8 * (width - 1 - i)));
    return QStringLiteral("41") + pid + QString::fromLatin1(data.toHex().toUpper());
}

bool is_same(double one, double other) {
    return std::abs(one - other) <= 1e-9 * std::max(1.0, std::abs(other));
}

} // namespace

body_finder::body_finder(QStringList its_pids, const sample_reading& its_reading,
                         const text_resources& its_lists)
    : pids(std::move(its_pids)), reading(its_reading), lists(its_lists),
      of_sweep(its_reading.by_standard ? columns_of_sweep(pids) : QList<int>()), met(pids.size()) {
    for (const QString& pid : pids) {
        bool is_pid = false;
        const int number = pid.toInt(&is_pid, 16);
        QList<layout> its_layouts;
        const int known = is_pid ? bytes_of(number) : 0;
        const QList<int> lengths = known > 0 ? QList<int>{known} : QList<int>{1, 2, 4};
        // A trim of FF says that the sensor has none.
        const bool has_trim = is_pid && first_of_run(number) == 0x14;
        const QList<quint8> fills = has_trim ? QList<quint8>{0xFF} : QList<quint8>{0x00, 0xFF};
        for (const int bytes : pid.size() == 2 && is_pid ? lengths : QList<int>())
            for (const quint8 fill : fills)
                for (const int width : {1, 2, 4})
                    for (int at = 0; at + width <= bytes; ++at)
                        its_layouts.append({bytes, at, width, fill});
        layouts += its_layouts;
    }
}

QStringList body_finder::bodies_of(const std::vector<std::optional<double>>& values) {
    QStringList bodies(pids.size(), no_reply);
    const auto value_of = [&](int column) {
        return static_cast<size_t>(column) < values.size() ? values[static_cast<size_t>(column)]
                                                           : std::nullopt;
    };
    for (int column = 0; column < pids.size(); ++column)
        if (const auto value = value_of(column); value && !of_sweep.contains(column))
            bodies[column] = body_of(
                column, *value, [this](const QString& one) { return sampled_number(one, reading, lists); });
    for (const int column : std::as_const(of_sweep)) {
        const auto value = value_of(column);
        if (!value)
            continue;
        if (pids[column] == QLatin1String("E4")) { // worked out of the others: its own bytes are not asked
            bodies[column] = encode_to_OBD(pids[column], *value, unit_system::imperial);
            continue;
        }
        met[column].clear(); // they hold for one sweep
        bodies[column] = body_of(column, *value, [&](const QString& one) {
            QStringList sweep = bodies;
            sweep[column] = one;
            return sampled_numbers(sweep, reading, lists)[column];
        });
    }
    const QList<double> numbers = sampled_numbers(bodies, reading, lists);
    for (int column = 0; column < pids.size(); ++column)
        if (const auto value = value_of(column); value && !is_same(numbers[column], *value))
            bodies[column] = no_reply;
    return bodies;
}

QString body_finder::body_of(int column, double value, const decoder& number_of) {
    QHash<double, QString>& known = met[column];
    if (const auto found = known.constFind(value); found != known.cend())
        return *found;
    QString its_body = no_reply;
    QList<layout>& places = layouts[column];
    for (qsizetype i = 0; i < places.size() && its_body == no_reply; ++i) {
        its_body = searched(pids[column], places[i], value, number_of).value_or(no_reply);
        if (its_body != no_reply)
            places.move(i, 0);
    }
    if (known.size() >= most_met)
        known.clear();
    known.insert(value, its_body);
    return its_body;
}

// Numbers rise or fall with the bytes, of signed ones each half by itself.
std::optional<QString> body_finder::searched(const QString& pid, const layout& where, double value,
                                             const decoder& number_of) {
    const quint64 last = (quint64{1} << (8 * where.width)) - 1;
    const auto body_with = [&](quint64 raw) {
        return body(pid, where.bytes, where.at, where.width, where.fill, raw);
    };
    const auto number_with = [&](quint64 raw) { return number_of(body_with(raw)); };
    for (const auto& [from, to] :
         {std::pair(quint64{0}, last), std::pair(quint64{0}, last / 2), std::pair(last / 2 + 1, last)}) {
        const double at_from = number_with(from);
        const double at_to = number_with(to);
        if (std::isnan(at_from) || std::isnan(at_to) || at_from == at_to) // a text, or other bytes
            continue;
        quint64 low = from;
        quint64 high = to; // the first at or beyond the value
        while (low < high) {
            const quint64 middle = std::midpoint(low, high);
            const double number = number_with(middle);
            const bool is_before = at_from < at_to ? number < value : number > value;
            if (is_before && !is_same(number, value))
                low = middle + 1;
            else
                high = middle;
        }
        if (is_same(number_with(low), value))
            return body_with(low);
    }
    return std::nullopt;
}

} // namespace brivant
