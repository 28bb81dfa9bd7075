#include "diagnostics/work_out_permanent.h"

#include "diagnostics/permanent_codes.h"
#include "obd/reply_text.h"

work_out_permanent::work_out_permanent(operation_context& its_context, diagnostic_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()) {}

QString work_out_permanent::failure_text() const {
    return QStringLiteral("The permanent codes were not read completely: %@");
}

void work_out_permanent::work_step(int step, const QString& reply) {
    // clang-format off
    switch (step) { // the reply to                the next command
    case 0:  return start();                       // "AT H1"
    case 1:  return ask_the_car(2, "0A");          // AT H1:  "0A"
    case 2:  return codes_answered(reply);         // 0A:     "01 41"
    case 3:  return drive_cycle_answered(reply);   // 01 41:  done
    default: return;                               // idle
    }
    // clang-format on
}

void work_out_permanent::start() {
    show("Reading the permanent codes");
    if (!host.connect_first())
        send(1, "AT H1", "OK");
}

// Both requests are newer than many cars: a refusal is an answer.
void work_out_permanent::ask_the_car(int next, const QString& command) {
    send(next, command, QStringLiteral("%1|7F%2|?").arg(positive_reply_of(command), command.left(2)));
}

void work_out_permanent::keep(const QString& request, const QString& reply) {
    results.kept[result_list::permanent] += {request, reply, form_of(state), QString(), 0, 0};
    context.view.reload(QStringLiteral("permanent"));
}

void work_out_permanent::codes_answered(const QString& reply) {
    keep(permanent_request, reply);
    show("Asking what the car has checked in this drive cycle");
    ask_the_car(3, "01 41");
}

void work_out_permanent::drive_cycle_answered(const QString& reply) {
    keep(drive_cycle_request, reply);
    show(read_permanent_codes(results, context.toolies).summary());
    context.view.play_sound(sound_done);
    host.task_done();
}
