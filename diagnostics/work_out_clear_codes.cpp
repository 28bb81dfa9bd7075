#include "diagnostics/work_out_clear_codes.h"

#include "base/string_table.h"
#include "obd/obd_messages.h"

#include <algorithm>

work_out_clear_codes::work_out_clear_codes(operation_context& its_context, diagnostic_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()) {}

QString work_out_clear_codes::failure_text() const {
    return QStringLiteral("work_out_clear_codes::Did not fully complete [ %@ ]");
}

void work_out_clear_codes::work_step(int step, const QString& reply) {
    switch (step) {
    case 0:
        show("Starting Clear codes");
        if (!host.connect_first())
            // Sent once: any real answer ends it.
            send(1, "04", positive_reply_of(QStringLiteral("04")) + QStringLiteral("|7F|?"));
        return;
    case 1: return clear_answered(reply);
    default: return; // idle
    }
}

// Whatever the reply, the codes count as cleared; the person is told when the car did not say so.
void work_out_clear_codes::clear_answered(const QString& reply) {
    show(results.cur_err_msg);
    context.view.show_busy(false);
    results.codesReadArray.clear();
    results.readinessFlagsArray.clear();
    for (const result_list list : {result_list::codes, result_list::status, result_list::permanent})
        results.kept.remove(list);
    context.view.reload(QStringLiteral("codes"));
    context.view.reload(QStringLiteral("readiness"));
    results.code_count_label = QStringLiteral("No of DTC Codes:");
    results.mil_label = QStringLiteral("MIL Lamp:");
    results.read_on_label = QStringLiteral("Read on");
    results.xtra_info_label.clear();
    context.view.reload(QStringLiteral("labels"));

    const QString cleared = QStringLiteral("Codes cleared sucessfully!!");
    show(cleared);
    const bool confirmed = is_positive(reply);
    if (confirmed)
        host.task_done();
    else
        leave();
    if (!confirmed)
        context.view.show_message(
            QString(),
            fill(QStringLiteral("The car did not confirm the clearing (its answer: %@). Switch the "
                                "ignition on with the engine off, then read the codes again to see "
                                "whether they are gone."),
                 {QString(reply).replace(QLatin1Char('\r'), QStringLiteral(", "))}));
    context.view.show_toast(cleared);
}

// One ECU that refuses keeps its codes, whatever the others say.
bool work_out_clear_codes::is_positive(const QString& reply) const {
    QStringList answers;
    if (!state.headers_shown)
        answers = reply_lines(reply);
    else
        for (const obd_group& ecu : context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply)))
            answers += context.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet);
    const QString positive = positive_reply_of(QStringLiteral("04"));
    return !answers.isEmpty() && std::all_of(answers.begin(), answers.end(), [&](const QString& answer) {
        return answer.startsWith(positive);
    });
}
