#include "livedata/sampling_talk.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace brivant {

namespace {

constexpr int voltage_pause_ms = 60'000;
constexpr double voltage_rise = 0.5; // of a charger or a running engine

std::optional<double> volts_in(const reply& told) {
    static const QRegularExpression number(QStringLiteral("\\d{1,2}\\.\\d+"));
    const auto found = number.match(told.text());
    return found.hasMatch() ? std::optional(found.captured().toDouble()) : std::nullopt;
}

car_talk::asking ask_voltage(sampling_talk& car) {
    // It says nothing about the car, so the link is not taken for one that holds.
    return car.send({.text = QStringLiteral("AT RV\r"),
                     .expectedReply = QStringLiteral("8|9|1"),
                     .why = sent_command::purpose::sets_up});
}

void tell_waiting(sampling_talk& car, std::optional<double> volts) {
    car.show(
        QStringLiteral("The car has not answered for five minutes. So as not to empty its battery%1 it is "
                       "left alone until its voltage rises, or you ask (F5)")
            .arg(volts ? QStringLiteral(" (%1 V)").arg(*volts, 0, 'f', 1) : QString()));
}

// Every request wakes the car's modules: until its voltage has risen, or the person asks, only the adapter is
// asked, for the voltage. `lowest`: of those told since the car was lost, once there is one.
talk wait_for_the_car(sampling_talk& car, std::optional<double>& lowest) {
    for (bool is_hurried = false; !is_hurried; is_hurried = co_await car.pause(voltage_pause_ms)) {
        const reply told = co_await ask_voltage(car);
        const std::optional<double> volts = volts_in(told);
        tell_waiting(car, volts);
        if (!volts)
            continue;
        if (lowest && *volts >= *lowest + voltage_rise)
            co_return;
        lowest = std::min(*volts, lowest.value_or(*volts));
    }
}

} // namespace

talk run_over_any_link(sampling_talk& car, talk (*run)(sampling_talk&)) {
    std::optional<link_lost> lost;
    std::optional<double> lowest_voltage;
    qint64 sweeps = 0; // when it was lost
    for (;;) {
        try {
            if (lost) {
                car.begin_anew();
                co_await car.again(*lost);
                if (car.is_car_gone())
                    co_await wait_for_the_car(car, lowest_voltage);
            }
            co_await run(car);
            co_return;
        } catch (const link_lost& loss) {
            if (car.results.sample_cnt == 0)
                throw;
            if (car.results.sample_cnt > sweeps)
                lowest_voltage.reset();
            sweeps = car.results.sample_cnt;
            car.mark_gap();
            lost = loss;
        } catch (const left&) { // neither adapter nor car answers over the new link yet
            if (!car.link.is_reconnecting())
                throw;
            lost = link_lost();
        } catch (const failed& why) {
            if (!car.link.is_reconnecting())
                throw;
            car.show(why.text);
            lost = link_lost();
        }
    }
}

} // namespace brivant
