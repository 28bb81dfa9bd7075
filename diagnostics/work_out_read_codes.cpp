#include "diagnostics/work_out_read_codes.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"

#include <QDateTime>
#include <QLocale>

namespace {
constexpr int most_retries = 2;
constexpr unsigned mil_bit = 0x80;
} // namespace

work_out_read_codes::work_out_read_codes(operation_context& its_context, diagnostic_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()) {}

QString work_out_read_codes::failure_text() const {
    return QStringLiteral("work_out_read::Did not fully complete [ %@ ]");
}

void work_out_read_codes::work_step(int step, const QString& reply) {
    console_log(QStringLiteral("work_out_read_codes:stepidx=%1 rcvd_msg=%2").arg(step).arg(reply));
    // clang-format off
    switch (step) { // the reply to                     the next command
    case 0:   return start();                        // "AT H1"
    case 111: return headers_on(reply);              // AT H1:    "01 01" with headers
    case 1:   return monitor_status_answered(reply); // 01 01:    "03" with headers, or "AT ST FF" and once more
    case 301: return evaluate_confirmed_codes(reply);// 03:       done
    default:  return;                                // idle
    }
    // clang-format on
}

void work_out_read_codes::start() {
    show("Starting Read codes");
    if (host.connect_first())
        return;
    context.view.show_toast(
        fill(QStringLiteral("%@ Read DTC "), {localised(QStringLiteral("TOAST_STARTING"))}));
    console_log(QStringLiteral("starting work_out_read_code******************"));
    results.mil_label.clear();
    results.code_count_label.clear();
    results.read_on_label.clear();
    context.view.reload(QStringLiteral("labels"));
    send(111, "AT H1", "OK");
}

void work_out_read_codes::headers_on(const QString& reply) {
    if (reply == no_reply) {
        context.view.show_message(localised(QStringLiteral("DLG_TIMEDOUT_RETRY")),
                                  QStringLiteral("Timed out .. Try again"));
        leave();
        state.cur_step = 0;
        return;
    }
    send_with_headers(1, "01 01");
}

void work_out_read_codes::monitor_status_answered(const QString& reply) {
    if (reply.contains(QLatin1String("NODATA")) && no_data_retries < most_retries) {
        ++no_data_retries;
        host.adapter_slowed();
        return send(0, "AT ST FF", "OK");
    }
    no_data_retries = 0;
    show(fill(QStringLiteral("Initial  reply: [%@]"), {reply}));
    evaluate_monitor_status(reply);
    context.view.show_toast(QStringLiteral("Querying for confirmed DTC(s) "));
    send_with_headers(301, "03");
}

// Bytes A to D of each ECU stand after "4101": MIL and number of codes, then the readiness of its monitors.
void work_out_read_codes::evaluate_monitor_status(const QString& reply) {
    results.no_of_ecus = 0;
    results.no_of_codes = 0;
    results.milLamp = false;
    results.readinessFlagsArray.clear();
    results.kept[result_list::status] = {
        {QStringLiteral("0101"), reply_to_keep(reply, context.link), form_of(state), QString(), 0, 0}};
    if (!has_no_data(reply)) {
        const obd_groups ecus = context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply));
        const qsizetype engine = context.toolies.findEngineEcuIdx(ecus);
        results.no_of_ecus = static_cast<int>(ecus.size());
        for (qsizetype i = 0; i < ecus.size(); ++i) {
            const QString data = context.toolies.l_pullOBDFromSingleGroupedMsg(ecus[i].pidSet);
            if (!data.startsWith(QLatin1String("4101")) || data.size() < 12)
                continue; // refused, or cut
            const unsigned a = convertStr2Byte(QStringView(data).sliced(4, 2));
            if (a & mil_bit) {
                results.milLamp = true;
                results.no_of_codes += static_cast<int>(a & ~mil_bit);
            }
            if (i == engine)
                results.readinessFlagsArray = context.toolies.handle_readiness_codes(data.sliced(6, 6));
        }
    }
    context.view.reload(QStringLiteral("readiness"));
}

void work_out_read_codes::evaluate_confirmed_codes(const QString& reply) {
    note_the_read();
    if (reply == no_reply) {
        keep_codes(reply);
        return leave(QStringLiteral("Failed to receive the error codes"));
    }
    list_codes(reply);
    keep_codes(reply);
    tell_result(reply);
    host.write_report();
    context.view.play_sound(sound_done);
    host.task_done();
}

void work_out_read_codes::keep_codes(const QString& reply) {
    results.kept[result_list::codes] = {{QStringLiteral("03"), reply_to_keep(reply, context.link),
                                         form_of(state), QString(), 0, results.codesReadArray.size()}};
    context.view.reload(QStringLiteral("codes"));
}

void work_out_read_codes::note_the_read() {
    const QString now = QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
    results.cur_err_msg = fill(QStringLiteral("Read on: %@"), {now});
    const qsizetype bar = state.protocol_description.indexOf(QLatin1Char('|'));
    if (bar >= 0)
        state.protocol_description = state.protocol_description.sliced(bar + 1);

    results.xtraInfoArray = {
        results.cur_err_msg,
        fill(QStringLiteral("Interface: %@"), {state.interface_description}),
        fill(QStringLiteral("Protocol: %@"), {state.protocol_description}),
        fill(QStringLiteral("No of ECUS: %d"), {QString::number(results.no_of_ecus)}),
    };
    results.code_count_label = QString::number(results.no_of_codes);
    results.mil_label = results.milLamp ? QStringLiteral("ON") : QStringLiteral("OFF");
    results.read_on_label = results.cur_err_msg;
    results.xtra_info_label = results.xtraInfoArray.join(QLatin1Char('\n'));
    context.view.reload(QStringLiteral("labels"));
}

void work_out_read_codes::list_codes(const QString& reply) {
    results.codesReadArray.clear();
    const bool refused = reply.contains(QLatin1Char('?')); // anywhere in it
    if (!refused && !has_no_data(reply)) {
        const obd_groups codes_by_ecu = context.toolies.l_workoutReadCodes(reply);
        host.load_the_codes();
        host.append_to_log(
            fill(QStringLiteral("------DTC Codes read:%@------------- \n"), {host.todays_date()}));
        for (const obd_group& ecu : codes_by_ecu) {
            for (const QString& code : ecu.pidSet)
                results.codesReadArray += fill(QStringLiteral("%@|%@"), {code, ecu.header});
        }
    }
    if (results.codesReadArray.isEmpty())
        results.codesReadArray += localised(QStringLiteral("NO_CODES"));
}

void work_out_read_codes::tell_result(const QString& reply) {
    const bool no_codes = results.codesReadArray.first() == localised(QStringLiteral("NO_CODES"));
    const qsizetype codes = no_codes ? 0 : results.codesReadArray.size();
    show("Rerieve codes successfully");
    show(codes == results.no_of_codes ? "Codes read!. Scroll for full description"
                                      : "Codes read...but different no of codes recvd");
    if (results.no_of_ecus == 0 && has_no_data(reply))
        throw step_failure(no_ecu_answers);
}
