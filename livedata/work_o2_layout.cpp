#include "livedata/work_o2_layout.h"

#include "obd/reply_text.h"
#include "obd/supported_pids.h"

#include <array>
#include <bit>

namespace {

constexpr int most_sensors_of_a_layout = 6;
// The first of the eight PIDs of conventional sensors, of wide-range sensors by voltage, and by current.
constexpr std::array<unsigned, 3> first_sensor_pids{0x14, 0x24, 0x34};

} // namespace

QString work_o2_layout::failure_text() const {
    return QStringLiteral("work_o2_layout::Did not fully complete: ( %@)");
}

void work_o2_layout::work_step(int step, const QString& reply) {
    if (!is_active())
        return;
    // clang-format off
    switch (step) { // the reply to              the next command
    case 0:  return start();                  // "01 13"
    case 1:  return layout_arrived(reply);    // 01 13: the Log Run of the sensors
    default: return;
    }
    // clang-format on
}

void work_o2_layout::start() {
    show("Reading o2 layout");
    if (!not_ready_to_ask())
        ask_pid(QStringLiteral("13"));
}

void work_o2_layout::layout_arrived(const QString& reply) {
    const obd_group engine = host.engine_ecu();
    const QString data = data_of_reply(reply, QStringLiteral("13"), engine.header);
    if (data == no_reply)
        throw step_failure(QStringLiteral("the car does not tell its oxygen sensors"));
    const unsigned mask = convertStr2Byte(QStringView(data).sliced(4, 2));
    results.o2_mask = static_cast<int>(mask);
    results.o2_header = engine.header;
    host.observer().o2_layout_known(results.o2_mask, results.o2_header);
    const int sensors = std::popcount(mask);
    if (sensors == 0 || sensors > most_sensors_of_a_layout)
        context.view.show_message(QString(), QStringLiteral("Couldn't lay out O2 sensors for your vehicle"));
    if (sensors == 0)
        return leave();
    const QStringList sensors_of_the_car = sensor_set(mask, engine);
    if (results.sample_cnt == 0 || results.pid_logitems_list != sensors_of_the_car)
        host.take_set(sensors_of_the_car); // else the run goes on over a new link
    state.cur_task = op_log_run;           // cur_op stays: the values go into the picture too
    state.cur_step = 0;
    controller.work_current_task(QString());
}

// One PID a sensor, in the order of the bits; of the three kinds of PID the one that the engine ECU answers.
QStringList work_o2_layout::sensor_set(unsigned mask, const obd_group& engine) const {
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
