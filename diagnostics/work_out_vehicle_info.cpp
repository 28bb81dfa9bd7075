#include "diagnostics/work_out_vehicle_info.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include "obd/trouble_codes.h"
#include "obd/vin.h"
#include "obd/whole_answer.h"

#include <QRegularExpression>
#include <algorithm>
#include <numeric>

work_out_vehicle_info::work_out_vehicle_info(operation_context& its_context, diagnostic_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()) {}

QString work_out_vehicle_info::failure_text() const {
    return QStringLiteral("work_vehicle_info::Did not fully complete(%@)");
}

void work_out_vehicle_info::work_step(int step, const QString& reply) {
    // clang-format off
    switch (step) { // the reply to             the next command
    case 0:   return start();                           // "AT H1"
    case 101: return send(102, "AT RV", "8|9|1");       // AT H1:  "AT RV"
    case 102: return voltage_answered(reply);           // AT RV:  "09 02"
    case 111: return vin_answered(reply);               // 09 02:  the first PID of the first ECU
    case 222: return value_answered(reply);             // 01 pp:  the next PID, then those of the next ECU
    default:  return;                                   // idle
    }
    // clang-format on
}

QString work_out_vehicle_info::name_of(const obd_group& ecu) const {
    const QString label = context.toolies.l_pull_ECU(ecu.header);
    if (ecu.header.isEmpty())
        return QStringLiteral("Car"); // a chip that shows no headers: who answers cannot be told
    return label.isEmpty() ? ecu.header : label;
}

void work_out_vehicle_info::add_row(const QString& row) {
    results.vehInfoArray += row;
    context.view.reload(QStringLiteral("vehicle"));
}

void work_out_vehicle_info::start() {
    show("Starting Read vehicle Info");
    if (host.connect_first())
        return;
    QStringList supporting;
    for (const obd_group& ecu : state.available_pids)
        supporting += QStringLiteral("%1: %2 PIDs").arg(name_of(ecu)).arg(ecu.pidSet.size());
    add_row(fill(QStringLiteral("No of ECUS : %d| Supporting %@"),
                 {QString::number(state.available_pids.size()), supporting.join(QLatin1String(", "))}));
    send(101, "AT H1", "OK");
}

void work_out_vehicle_info::voltage_answered(const QString& reply) {
    if (reply == no_reply)
        return leave(QStringLiteral("Unable to connect to interface ... Timed out .. Try again"));
    // Any answer is let through for this command, also a late "OK" to the one before, and noise.
    static const QRegularExpression volts(QStringLiteral("^\\d+(\\.\\d+)?V?$"),
                                          QRegularExpression::CaseInsensitiveOption);
    const QString voltage = reply.split(u'\r').filter(volts).value(0, not_available);
    if (voltage == not_available) {
        show("Voltage not available for this vehicle ");
    } else {
        show(fill(QStringLiteral("Got proper reply: (%@)"), {reply}));
    }
    add_row(fill(QStringLiteral(" Voltage: %@"), {voltage}));
    ask(111, "09 02|12.0");
}

// The VIN decoder reads replies without headers: on CAN the byte count and numbered lines, before that the
// data of each line.
QString work_out_vehicle_info::vin_reply_without_headers(const QString& reply) const {
    if (!state.headers_shown) {
        const QStringList messages = reply_lines(reply);
        if (is_whole_legacy_vin(messages))
            return messages.join(u'\r');
        return whole_data_without_headers(reply, QStringLiteral("4902")).isEmpty() ? QString() : reply;
    }
    const obd_groups ecus = context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply));
    const auto data_of = [&](const obd_group& ecu) {
        return context.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet);
    };
    auto chosen = std::find_if(ecus.begin(), ecus.end(), [&](const obd_group& ecu) {
        return context.toolies.isThisEngineHeader(ecu.header) &&
               data_of(ecu).startsWith(QLatin1String("4902"));
    });
    if (chosen == ecus.end())
        chosen = std::find_if(ecus.begin(), ecus.end(), [&](const obd_group& ecu) {
            return data_of(ecu).startsWith(QLatin1String("4902"));
        });
    if (chosen == ecus.end())
        return {};
    if (!is_can(state.cur_protocol))
        return is_whole_legacy_vin(chosen->pidSet) ? chosen->pidSet.join(u'\r') : QString();
    if (!is_whole_can_answer(chosen->pidSet))
        return {};
    const QString data = data_of(*chosen);
    const QString length = QString::number(data.size() / 2, 16).toUpper().rightJustified(3, u'0');
    return QStringLiteral("%1\r0:%2\r1:%3\r2:%4\r")
        .arg(length, data.mid(0, 12), data.mid(12, 14), data.mid(26, 14));
}

void work_out_vehicle_info::vin_answered(const QString& reply) {
    const QString plain = has_no_data(reply) ? QString() : vin_reply_without_headers(reply);
    const QString vin = plain.isEmpty() ? not_available : work_out_vin(plain);
    results.kept[result_list::vehicle] += {QStringLiteral("0902"),
                                           reply_to_keep(reply, context.link),
                                           form_of(state),
                                           QString(),
                                           results.vehInfoArray.size(),
                                           1};
    add_row(fill(QStringLiteral(" VIN: %@"), {vin.isEmpty() ? not_available : vin}));

    const obd_groups& ecus = state.available_pids;
    if (std::all_of(ecus.begin(), ecus.end(), [](const obd_group& ecu) { return ecu.pidSet.isEmpty(); })) {
        console_log(QStringLiteral("work_out_vehInfo done No pids "));
        host.write_report();
        return host.task_done();
    }
    show("Sampling Supported PID(s) data ");
    ecu_index = 0;
    pid_index = 0;
    while (ecus[ecu_index].pidSet.isEmpty())
        ++ecu_index;
    results.progress_total = static_cast<int>(
        std::accumulate(ecus.begin(), ecus.end(), qsizetype{0},
                        [](qsizetype pids, const obd_group& ecu) { return pids + ecu.pidSet.size(); }));
    add_heading();
    ask_current_pid();
}

void work_out_vehicle_info::add_heading() {
    const obd_group& ecu = state.available_pids[ecu_index];
    // Every heading but the first has a blank before its closing dashes.
    const QString format = ecu_index == 0 ? QStringLiteral(" --- ECU(%@) %@--- |has %d available PIDs")
                                          : QStringLiteral(" --- ECU(%@) %@ --- |has %d available PIDs");
    add_row(fill(format, {ecu.header, name_of(ecu), QString::number(ecu.pidSet.size())}));
}

void work_out_vehicle_info::ask_current_pid() {
    ask(222, QStringLiteral("01 %1 ").arg(state.available_pids[ecu_index].pidSet[pid_index]));
}

QString work_out_vehicle_info::answer_of(const obd_group& ecu, const QString& reply) const {
    if (!state.headers_shown)
        return whole_data_without_headers(reply, QStringLiteral("41"));
    const obd_groups answers = context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply));
    const auto bodies = pull_dtcGruped_pidSet_by_ECU(answers, ecu.header, state.cur_protocol);
    return bodies ? context.toolies.data_of_answer(*bodies) : not_available;
}

void work_out_vehicle_info::value_answered(const QString& reply) {
    const obd_groups& ecus = state.available_pids;
    if (ecu_index >= ecus.size() || pid_index >= ecus[ecu_index].pidSet.size())
        throw step_failure(QStringLiteral("the list of supported PIDs changed meanwhile"));
    const obd_group& ecu = ecus[ecu_index];
    const QString pid = ecu.pidSet[pid_index];
    QString value = no_reply;
    if (!has_no_data(reply)) {
        const QString data = answer_of(ecu, reply);
        if (data.startsWith(QStringLiteral("41") + pid))
            value = context.toolies.translateResponse(data);
    }
    const int rows = value == no_reply ? 0 : 1;
    results.kept[result_list::vehicle] += {QStringLiteral("01") + pid,
                                           reply_to_keep(reply, context.link),
                                           form_of(state),
                                           ecu.header,
                                           results.vehInfoArray.size(),
                                           rows};
    if (rows > 0)
        add_row(fill(QStringLiteral("%@|%@|%@"), {pid, context.toolies.l_get_pid_name(pid, false), value}));
    ++pid_index;
    ++results.progress_done;
    context.view.reload(QStringLiteral("progress"));
    show(fill(QStringLiteral("Sampling  PID(%@) for ECU(%@) %d of %d "),
              {pid, ecu.header, QString::number(pid_index), QString::number(ecu.pidSet.size())}));
    if (pid_index < ecu.pidSet.size())
        return ask_current_pid();

    do {
        ++ecu_index;
    } while (ecu_index < ecus.size() && ecus[ecu_index].pidSet.isEmpty());
    pid_index = 0;
    if (ecu_index < ecus.size()) {
        show("Sampling Next ECU PID(s) data ");
        add_heading();
        return ask_current_pid();
    }
    console_log(QStringLiteral("work_out_vehInfo pids done #####"));
    show("Current task done!");
    host.write_report();
    host.task_done();
}
