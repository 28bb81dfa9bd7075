#include "diagnostics/work_out_xtras.h"

#include "base/string_table.h"
#include "obd/vin.h"
#include "obd/whole_answer.h"

namespace {

constexpr int idle = -1;

QList<work_out_xtras::extra> extras_of(const QStringList& lines) {
    QList<work_out_xtras::extra> extras;
    for (const QString& line : lines) {
        const qsizetype bar = line.indexOf(u'|');
        if (bar > 0)
            extras += {line.first(bar), line.sliced(bar + 1)};
    }
    return extras;
}

} // namespace

work_out_xtras::work_out_xtras(operation_context& its_context, diagnostic_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()) {}

QString work_out_xtras::failure_text() const {
    return QStringLiteral("work_vehicle_info::Did not fully complete(%@)");
}

void work_out_xtras::work_step(int step, const QString& reply) {
    try {
        // clang-format off
        switch (step) { // the reply to           the next command
        case 0:   return start();               // "AT H0"
        case 101: return headers_off(reply);    // AT H0:  the first command of the list
        case 1:   return value_answered(reply); // 22 ...: the next command
        default:  return;                       // idle
        }
        // clang-format on
    } catch (const std::exception&) {
        send(idle, "AT H0", "OK"); // the adapter is left with headers off
        throw;
    }
}

void work_out_xtras::start() {
    show("Starting Read Xtras Info");
    if (!host.connect_first())
        send(101, "AT H0", "OK");
}

void work_out_xtras::headers_off(const QString& reply) {
    if (reply == no_reply)
        return leave(QStringLiteral("Failed to receive data"));
    results.xtrasArray.clear();
    extras = extras_of(context.toolies.lists()
                           .get_array_from_resource(QStringLiteral("SUBARU_EURO4"), QStringLiteral("txt"))
                           .value_or(QStringList()));
    if (extras.isEmpty())
        throw step_failure(QStringLiteral("the list of commands is missing"));
    item = 0;
    ask_current();
}

void work_out_xtras::ask_current() {
    results.progress_done = static_cast<int>(item);
    results.progress_total = static_cast<int>(extras.size());
    context.view.reload(QStringLiteral("progress"));
    const QString& command = extras[item].command;
    send(1, command, positive_reply_of(command) + QStringLiteral("|7F"));
}

void work_out_xtras::value_answered(const QString& reply) {
    if (reply == no_reply || reply.contains(u'?'))
        return leave(QStringLiteral("Failed to receive data"));
    if (!context.link.current_command().startsWith(extras[item].command))
        return context.link.send_again(); // the reply to another command
    add_xtraInfo_item(reply, extras[item].label);
    context.view.reload(QStringLiteral("extras"));
    if (++item < extras.size())
        return ask_current();
    context.view.play_sound(sound_done);
    show("Read succesfully");
    host.task_done();
}

void work_out_xtras::add_xtraInfo_item(const QString& reply, const QString& this_label) {
    const QString data = whole_data_without_headers(reply, positive_reply_of(extras[item].command));
    if (data.isEmpty()) { // refused, no data, or not all of it
        results.xtrasArray += fill(QStringLiteral("%@:| N/A|"), {this_label});
        return;
    }
    if (this_label == QLatin1String("VIN"))
        results.xtrasArray +=
            fill(QStringLiteral("%@:| %@|"), {this_label, pullAsciiStr(QString(data.mid(6)))});
    else
        results.xtrasArray +=
            fill(QStringLiteral("%@:| %@ |"), {this_label, context.toolies.translateResponse_subaru(data)});
}
