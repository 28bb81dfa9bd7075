#include "diagnostics/mode6_test.h"

#include "base/string_table.h"
#include "diagnostics/mode6_records.h"
#include "obd/ecu_names.h"
#include "obd/mode6_scaling.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"

namespace {
constexpr int most_retries = 1;
}

mode6_test::mode6_test(operation_context& its_context, diagnostic_host& its_host, texts its_texts,
                       QStringList& its_rows)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()),
      words(std::move(its_texts)), rows(its_rows) {}

void mode6_test::work_step(int step, const QString& reply) {
    // clang-format off
    switch (step) { // the reply to               the next command
    case 0:   return start();                   // "AT H1"
    case 1:   return headers_on(reply);         // AT H1:  the support request, or "AT ST FF" and once more
    case 2:
    case 201: return support_answered(reply);   // 06 xx:  the first identifier
    case 3:   return test_answered(reply);      // 06 xx:  the next identifier
    case 101: return connection_checked(reply); // no step leads here
    default:  return;                           // idle
    }
    // clang-format on
}

void mode6_test::start() {
    show(words.starting);
    if (host.connect_first())
        return;
    context.view.show_busy(true);
    rows.clear();
    results.kept.remove(words.kept);
    results.cur_CAN_raw_data.clear();
    context.view.reload(words.list);
    send(1, "AT H1", "OK");
}

void mode6_test::headers_on(const QString& reply) {
    const bool is_silent = words.retries_silence && reply == no_reply;
    if ((is_silent || reply.contains(QLatin1String("NODATA"))) && no_data_retries < most_retries) {
        ++no_data_retries;
        host.adapter_slowed();
        return send(0, "AT ST FF", "OK");
    }
    show(fill(QStringLiteral("Got proper reply: ( %@)"), {reply}));
    if (!words.toast.isEmpty())
        context.view.show_toast(fill(words.toast, {localised(QStringLiteral("TOAST_STARTING"))}));
    ask_for_support();
}

void mode6_test::connection_checked(const QString& reply) {
    if (reply == no_reply)
        return leave(QStringLiteral("Unable to connect to interface ... Timed out .. Try again"));
    send_with_headers(3, "01 01");
}

QString mode6_test::first_ecu_data(const QString& reply) const {
    const obd_groups ecus = context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply));
    if (ecus.isEmpty())
        return {};
    const qsizetype engine = context.toolies.findEngineEcuIdx(ecus);
    return context.toolies.l_pullOBDFromSingleGroupedMsg(ecus[findEngIdxFromGroupedMsg(ecus, engine)].pidSet);
}

void mode6_test::nothing_there(const QString& text, int sound) {
    show(text.section(u'\n', 0, 0));
    context.view.play_sound(sound);
    context.view.show_message(QString(), text);
    results.car_offers_none = true;
    leave();
}

void mode6_test::query(const QStringList& identifiers) {
    test_IDs = identifiers;
    item = 0;
    ask_next();
}

void mode6_test::ask_next() {
    results.progress_done = static_cast<int>(item);
    results.progress_total = static_cast<int>(test_IDs.size());
    context.view.reload(QStringLiteral("progress"));
    send_with_headers(3, QStringLiteral("06 ") + test_IDs[item]);
}

void mode6_test::test_answered(const QString& reply) {
    if (reply == no_reply) {
        results.kept[words.kept] += {QStringLiteral("06%1").arg(test_IDs[item]),
                                     reply_to_keep(reply, context.link),
                                     form_of(state),
                                     QString(),
                                     rows.size(),
                                     0};
    } else if (!has_no_data(reply)) {
        const obd_groups ecus = context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply));
        if (!ecus.isEmpty()) {
            const qsizetype engine = findEngIdxFromGroupedMsg(ecus, context.toolies.findEngineEcuIdx(ecus));
            const mode6_rows read = handle_a_mode6_TestID(ecus[engine].pidSet, static_cast<int>(item),
                                                          state.cur_protocol, context.toolies.lists());
            results.kept[words.kept] += {QStringLiteral("06%1").arg(test_IDs[item]),
                                         reply,
                                         form_of(state),
                                         ecus[engine].header,
                                         rows.size(),
                                         read.rows.size()};
            rows += read.rows;
            results.cur_CAN_raw_data += read.raw;
            context.view.reload(words.list);
        }
    }
    const QString querying =
        fill(words.querying, {QString::number(item + words.counts_from), QString::number(test_IDs.size())});
    context.view.show_toast(querying);
    show(querying);
    if (++item < test_IDs.size())
        return ask_next();
    all_answered();
}

void mode6_test::all_answered() {
    context.view.reload(words.list);
    show("Current task done!");
    host.append_to_log(fill(words.log_heading, {host.todays_date()}));
    for (const QString& row : rows) {
        const QStringList fields = row.split(u'|');
        host.append_to_log(fill(QStringLiteral("%@ \n \t %@ \n\t %@ \n"),
                                {fields.value(1), fields.value(2), fields.value(3)}));
    }
    host.write_report();
    context.view.play_sound(sound_done);
    host.task_done();
}

// --- a range of monitors -----------------------------------------------------------------------------------

monitor_range_test::monitor_range_test(operation_context& its_context, diagnostic_host& its_host,
                                       texts its_texts, QStringList& its_rows, range its_range)
    : mode6_test(its_context, its_host, std::move(its_texts), its_rows), monitors(std::move(its_range)) {}

void monitor_range_test::ask_for_support() {
    if (!is_can(state.cur_protocol))
        return nothing_there(QStringLiteral("Not Supported by your vehicle"), sound_done);
    send_with_headers(2, monitors.support_request);
}

void monitor_range_test::support_answered(const QString& reply) {
    if (reply.contains(QLatin1String("NODATA")))
        return nothing_there(monitors.no_data, sound_done);
    const QString bitmap = first_ecu_data(reply).mid(4, 8);
    QStringList identifiers;
    for (int n = 0; n < monitors.count; ++n) {
        const QString identifier = convertByte2HexStr(monitors.first + static_cast<unsigned>(n));
        if (is_this_code_available(bitmap, identifier, monitors.map))
            identifiers += identifier;
    }
    if (identifiers.isEmpty())
        return nothing_there(QStringLiteral("Not available or No data"), sound_no_identifier);
    query(identifiers);
}
