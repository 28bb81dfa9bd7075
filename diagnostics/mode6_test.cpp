#include "diagnostics/mode6_test.h"

#include "base/string_table.h"
#include "diagnostics/mode6_records.h"
#include "obd/ecu_names.h"
#include "obd/mode6_scaling.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"

namespace {

// The data of the ECU that is asked, in a reply with headers.
QString first_ecu_data(diagnostic_talk& car, const QString& reply) {
    const obd_groups ecus = car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply));
    if (ecus.isEmpty())
        return {};
    const qsizetype engine = car.toolies.findEngineEcuIdx(ecus);
    return car.toolies.l_pullOBDFromSingleGroupedMsg(ecus[findEngIdxFromGroupedMsg(ecus, engine)].pidSet);
}

void take_test(diagnostic_talk& car, const mode6_test& test, const QString& identifier, qsizetype item,
               const QString& reply, QStringList& rows) {
    const QString request = QStringLiteral("06") + identifier;
    if (reply == no_reply)
        car.keep(test.kept, request, reply, rows.size());
    if (has_no_data(reply))
        return;
    const obd_groups ecus = car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply));
    if (ecus.isEmpty())
        return;
    const qsizetype engine = findEngIdxFromGroupedMsg(ecus, car.toolies.findEngineEcuIdx(ecus));
    const mode6_rows read = handle_a_mode6_TestID(ecus[engine].pidSet, static_cast<int>(item),
                                                  car.state.cur_protocol, car.toolies.lists());
    car.keep(test.kept, request, reply, rows.size(), read.rows.size(), ecus[engine].header);
    rows += read.rows;
    car.results.cur_CAN_raw_data += read.raw;
    car.view.reload(test.list);
}

void log_rows(diagnostic_talk& car, const mode6_test& test, const QStringList& rows) {
    car.append_to_log(fill(test.log_heading, {car.todays_date()}));
    for (const QString& row : rows) {
        const QStringList fields = row.split(u'|');
        car.append_to_log(fill(QStringLiteral("%@ \n \t %@ \n\t %@ \n"),
                               {fields.value(1), fields.value(2), fields.value(3)}));
    }
}

} // namespace

void nothing_there(diagnostic_talk& car, const QString& text, int sound) {
    car.show(text.section(u'\n', 0, 0));
    car.view.play_sound(sound);
    car.view.show_message(QString(), text);
    car.results.car_offers_none = true;
    throw left{};
}

talk work_mode6_test(diagnostic_talk& car, mode6_test test, QStringList& rows) {
    co_await car.ready(test.starting);
    rows.clear();
    car.results.kept.remove(test.kept);
    car.results.cur_CAN_raw_data.clear();
    car.view.reload(test.list);

    QString headers = co_await car.at("AT H1", "OK");
    if (headers.contains(QLatin1String("NODATA")) || (test.retries_silence && headers == no_reply)) {
        co_await car.wait_longer();
        headers = co_await car.at("AT H1", "OK");
    }
    car.show(fill(QStringLiteral("Got proper reply: ( %@)"), {headers}));
    if (!test.toast.isEmpty())
        car.view.show_toast(fill(test.toast, {localised(QStringLiteral("TOAST_STARTING"))}));

    QStringList identifiers;
    co_await test.find_identifiers(car, identifiers);
    for (qsizetype item = 0; item < identifiers.size(); ++item) {
        car.progress(item, identifiers.size());
        const QString reply = co_await car.ask(QStringLiteral("06 ") + identifiers[item]);
        take_test(car, test, identifiers[item], item, reply, rows);
        const QString querying = fill(
            test.querying, {QString::number(item + test.counts_from), QString::number(identifiers.size())});
        car.view.show_toast(querying);
        car.show(querying);
    }
    car.view.reload(test.list);
    car.show("Current task done!");
    log_rows(car, test, rows);
    car.write_report();
    car.view.play_sound(sound_done);
}

talk find_monitors(diagnostic_talk& car, monitor_range monitors, QStringList& identifiers) {
    if (!is_can(car.state.cur_protocol))
        nothing_there(car, QStringLiteral("Not Supported by your vehicle"), sound_done);
    const QString reply = co_await car.ask(monitors.support_request);
    if (reply.contains(QLatin1String("NODATA")))
        nothing_there(car, monitors.no_data, sound_done);
    const QString bitmap = first_ecu_data(car, reply).mid(4, 8);
    for (int n = 0; n < monitors.count; ++n) {
        const QString identifier = convertByte2HexStr(monitors.first + static_cast<unsigned>(n));
        if (is_this_code_available(bitmap, identifier, monitors.map))
            identifiers += identifier;
    }
    if (identifiers.isEmpty())
        nothing_there(car, QStringLiteral("Not available or No data"), sound_no_identifier);
}
