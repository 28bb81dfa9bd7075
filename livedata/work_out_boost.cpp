#include "livedata/work_out_boost.h"

#include "base/string_table.h"

QString work_out_boost::failure_text() const {
    return QStringLiteral("work_out_boost::Did not fully complete: ( %@)");
}

void work_out_boost::work_step(int step, const QString& reply) {
    if (!is_active())
        return;
    // clang-format off
    switch (step) { // the reply to              the next command
    case 0:  return start();                  // "01 0B", the manifold pressure
    case 1:  return value_arrived(reply);     // 01 <PID>: "01 06", "01 08", "01 0A", "01 0B" again
    default: return;
    }
    // clang-format on
}

void work_out_boost::start() {
    show("Starting log");
    if (not_ready_to_ask())
        return;
    host.addEngECU_toPidList();
    if (all_supported())
        ask(0);
}

void work_out_boost::value_arrived(const QString& reply) {
    if (nothing_came(reply))
        return;
    const int index = cur_log_idx();
    QString data = data_of_reply(reply);
    if (data != no_reply)
        data.replace(2, 2, row(index).pid); // the PID alone: a data byte may be 0B too
    show(fill(QStringLiteral("Got proper reply: ( %@)"), {data}));
    take(index, data);
    go_on(data);
}
