#include "livedata/work_out_log.h"

#include "base/string_table.h"

QString work_out_log::failure_text() const {
    return QStringLiteral("work_out_log::Did not fully complete: ( %@)");
}

void work_out_log::work_step(int step, const QString& reply) {
    if (!is_active())
        return;
    // clang-format off
    switch (step) { // the reply to              the next command
    case 0:  return start();                  // "01 <first PID>"
    case 1:  return value_arrived(reply);     // 01 <PID>: "01 <next PID>", after the last the first again
    default: return;
    }
    // clang-format on
}

void work_out_log::start() {
    show("Starting log");
    if (not_ready_to_ask())
        return;
    host.addEngECU_toPidList();
    if (results.these_samples.isEmpty()) { // none of the chosen PIDs is one of this car
        context.view.show_message(QString(), localised(QStringLiteral("DLG_noPIDs_CHOSEN")));
        return leave();
    }
    ask(cur_log_idx() < results.these_samples.size() ? cur_log_idx() : 0);
}

void work_out_log::value_arrived(const QString& reply) {
    if (nothing_came(reply))
        return;
    const int index = cur_log_idx();
    const QString data = data_of_reply(reply);
    show(fill(QStringLiteral("Got proper reply: ( %@)"), {data}));
    take(index, data);
    if (state.cur_op == op_o2_layout)
        host.observer().set_sensor_value(index, QString::number(row(index).latest, 'f', 3));
    go_on(data);
}
