#include "livedata/fast_gain.h"

#include "obd/pid_lengths.h"
#include "obd/reply_text.h"

#include <QMap>
#include <QSet>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr int least_requests = 20;
constexpr double worth_telling = 2;

// How many requests read the set of the run when so many PIDs of an ECU stand in one.
int requests_for(const sampling_talk& car, int most_pids) {
    QMap<QString, QSet<QString>> joinable;
    QSet<QString> alone;
    for (const sample_row& row : std::as_const(car.results.these_samples)) {
        const QString pid = requested_pid(row.pid);
        const QString ecu = row.item.section(u'|', 1);
        if (is_worked_out(row.pid))
            continue;
        if (car.tells(ecu, pid) && pid_length(static_cast<int>(convertStr2Byte(pid))) > 0)
            joinable[ecu] += pid;
        else
            alone += row.item;
    }
    auto requests = static_cast<int>(alone.size());
    for (const QSet<QString>& pids : std::as_const(joinable))
        requests += (static_cast<int>(pids.size()) + most_pids - 1) / most_pids;
    return requests;
}

// A sweep of the usual run asks for each by itself.
int values_of(const sampling_talk& car) {
    return static_cast<int>(std::count_if(car.results.these_samples.begin(), car.results.these_samples.end(),
                                          [](const sample_row& row) { return !is_worked_out(row.pid); }));
}

// Of one request of a fast run.
double milliseconds_of_request(const sampling_talk& car, const std::optional<adapter_passport>& passport) {
    if (passport)
        return passport->answer_ms + passport->rest_ms;
    // Behind the first byte the adapter waits for others, and sends the rest of the answer, which it goes on
    // to do.
    const exchange_pace& pace = car.results.pace;
    return pace.first_ms() + (pace.whole_ms() - pace.first_ms()) / 2;
}

} // namespace

std::optional<double> fast_gain(const sampling_talk& car) {
    const std::optional<adapter_passport> passport = car.passport();
    const exchange_pace& pace = car.results.pace;
    const bool on_can = is_can(car.link.adapter().cur_protocol()) && car.link.adapter().headers_shown();
    if (car.speed() != sampling_speed::usual || pace.answered < least_requests || (!passport && !on_can) ||
        car.link.place().address().isEmpty())
        return std::nullopt;
    const int at_once = on_can ? car.abilities_of_adapter().most_pids : 1;
    const double fast_ms = requests_for(car, at_once) * milliseconds_of_request(car, passport);
    return fast_ms > 0 ? std::optional(values_of(car) * pace.whole_ms() / fast_ms) : std::nullopt;
}

QString fast_gain_sentence(const sampling_talk& car) {
    const double times = fast_gain(car).value_or(0);
    return times < worth_telling
               ? QString()
               : QStringLiteral("Asked fast, this set would give about %1 times as many values a second")
                     .arg(std::floor(times), 0, 'f', 0);
}

} // namespace brivant
