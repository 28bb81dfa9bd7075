#include "livedata/sampling_talk.h"

#include "obd/reply_text.h"
#include "obd/supported_pids.h"

#include <array>
#include <bit>

namespace brivant {

namespace {

constexpr int most_sensors_of_a_layout = 6;
// The first of the eight PIDs of conventional sensors, of wide-range sensors by voltage, and by current.
constexpr std::array<unsigned, 3> first_sensor_pids{0x14, 0x24, 0x34};

// One PID a sensor, in the order of the bits; of the three kinds of PID the one that the engine ECU answers.
QStringList sensor_set(unsigned mask, const obd_group& engine) {
    QStringList items;
    for (unsigned bit = 0; bit < 8; ++bit) {
        if ((mask >> bit & 1) == 0)
            continue;
        QString pid = convertByte2HexStr(first_sensor_pids.front() + bit);
        for (const unsigned first : first_sensor_pids) {
            const QString candidate = convertByte2HexStr(first + bit);
            if (engine.pidSet.contains(candidate)) {
                pid = candidate;
                break;
            }
        }
        items += pid + u'|' + engine.header;
    }
    return items;
}

// What the car has told of its sensors holds for the run, also over a new link.
talk find_sensors(sampling_talk& car) {
    co_await car.ready_to_ask("Reading o2 layout");
    const obd_group engine = car.engine_ecu();
    const o2_banks banks = o2_banks_of({engine});
    const QString map = banks == o2_banks::two ? QStringLiteral("13") : QStringLiteral("1D");
    const reply layout = co_await car.ask_pid(map, true);
    const QString data = car.data_of_reply(layout, map, engine.header);
    if (data == no_reply)
        throw step_failure(QStringLiteral("the car does not tell its oxygen sensors"));
    const unsigned mask = convertStr2Byte(QStringView(data).sliced(4, 2));
    car.results.o2_mask = static_cast<int>(mask);
    car.results.o2_order = banks;
    car.results.o2_header = engine.header;
    car.observer().o2_layout_known(car.results.o2_mask, car.results.o2_header);
    const int sensors = std::popcount(mask);
    if (sensors == 0 || sensors > most_sensors_of_a_layout)
        car.view.show_message(QString(), QStringLiteral("Couldn't lay out O2 sensors for your vehicle"));
    if (sensors == 0)
        throw left{};
    car.take_set(sensor_set(mask, engine));
}

} // namespace

talk work_o2_layout(sampling_talk& car) {
    if (car.results.sample_cnt == 0)
        co_await find_sensors(car);
    co_await work_out_log(car);
}

} // namespace brivant
