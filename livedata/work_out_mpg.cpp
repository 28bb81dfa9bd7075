#include "livedata/work_out_mpg.h"

#include "base/string_table.h"

namespace {

constexpr double km_per_mile = 1.609344;
constexpr double litres_per_gallon = 3.78541178;
// The program's own factors of air to fuel and of fuel density.
constexpr double air_fuel_factor = 7.1073357;
constexpr double density_factor = 7.55987;

} // namespace

QString work_out_mpg::failure_text() const {
    return QStringLiteral("work_out_mpg::Did not fully complete: ( %@)");
}

void work_out_mpg::work_step(int step, const QString& reply) {
    if (!is_active())
        return;
    // clang-format off
    switch (step) { // the reply to              the next command
    case 0:  return start();                  // "01 0D", the speed
    case 1:  return value_arrived(reply);     // 01 0D: "01 10", the air flow; 01 10: "01 0D" again
    default: return;
    }
    // clang-format on
}

void work_out_mpg::start() {
    show("Starting fule consumption");
    if (not_ready_to_ask())
        return;
    host.addEngECU_toPidList();
    if (!all_supported())
        return;
    prev_reply = QStringLiteral("41E40000");
    ask(speed);
}

void work_out_mpg::value_arrived(const QString& reply) {
    if (reply == no_reply && !state.adapter_ready)
        return context.link.set_up_anew(adapter_was_reset);
    if (reply == no_reply) {
        show("Speed or air flow did not come: the run has ended. Is the ignition on? Start again (F5)");
        return leave();
    }
    if (nothing_came(reply))
        return;
    const int index = cur_log_idx();
    const QString data = data_of_reply(reply);
    show(fill(QStringLiteral("Got proper reply: ( %@)"), {data}));
    take(index, data);
    if (!is_active())
        return;
    if (index == speed)
        speed_arrived(data);
    else
        air_flow_arrived(data);
}

void work_out_mpg::speed_arrived(const QString& data) {
    cur_Speed = context.toolies.get_OBDVal(data);
    prev_reply = data;
    ask(air_flow);
}

void work_out_mpg::air_flow_arrived(const QString& data) {
    cur_MAF = context.toolies.get_OBDVal(data);
    compute_MPG(true);
    const bool known = prev_reply != no_reply && data != no_reply;
    const QString encoded = known ? context.toolies.encode_to_OBD(QStringLiteral("E4"), cur_MPG) : no_reply;
    show_economy(encoded);
    end_of_sweep(encoded + u',' + prev_reply + u',' + data);
    if (is_active())
        ask(speed);
}

// A standing engine has no air flow and no economy: infinite, or no number at all.
void work_out_mpg::compute_MPG(bool by_density) {
    cur_MPG = by_density ? (cur_Speed * km_per_mile) / (cur_MAF * density_factor) * air_fuel_factor
                         : cur_Speed * air_fuel_factor / cur_MAF;
    cur_KPL = cur_MPG * km_per_mile / litres_per_gallon;
}

// The text follows the unit system, while matrix and log hold miles a gallon in either: on purpose.
void work_out_mpg::show_economy(const QString& data) {
    const double shown = context.toolies.units() == unit_system::metric ? cur_KPL : cur_MPG;
    sample_row& its_row = row(economy);
    its_row.value = data == no_reply ? no_reply : QString::number(shown, 'f', 6); // "inf" without air flow
    its_row.latest = context.toolies.get_OBDVal(data);
    note_extremes(its_row, shown);
    output_item(economy, data);
}
