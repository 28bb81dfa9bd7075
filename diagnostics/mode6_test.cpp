#include "diagnostics/mode6_test.h"

#include "base/string_table.h"
#include "diagnostics/mode6_records.h"
#include "obd/mode6_scaling.h"
#include "obd/reply_text.h"

namespace brivant {

namespace {

void take_test(diagnostic_talk& car, const mode6_test& test, const QString& identifier, qsizetype item,
               const reply& what_came) {
    answer told{QStringLiteral("06") + identifier, what_came, {}, {}};
    const ecu_said* ecu = what_came.holds_nothing() ? nullptr : what_came.answering();
    if (ecu) {
        told.ecu = ecu->header;
        for (const test_row& row : handle_a_mode6_TestID(*ecu, static_cast<int>(item), car.toolies.lists()))
            told.rows += row;
    }
    car.tell(test.which, told);
}

void log_rows(diagnostic_talk& car, const mode6_test& test) {
    car.append_to_log(fill(test.log_heading, {car.todays_date()}));
    for (const test_row& row : rows_of<test_row>(car.results.rows(test.which)))
        car.append_to_log(
            fill(QStringLiteral("%@ \n \t %@ \n\t %@ \n"), {row.title(), row.subject(), row.text()}));
}

} // namespace

void nothing_there(diagnostic_talk& car, const QString& text, int sound) {
    car.show(text.section(u'\n', 0, 0));
    car.view.play_sound(sound);
    car.view.show_message(QString(), text);
    car.results.car_offers_none = true;
    throw left{};
}

talk work_mode6_test(diagnostic_talk& car, mode6_test test) {
    co_await car.ready(test.starting);
    car.forget(test.which);

    reply headers = co_await car.at("AT H1", "OK");
    if (headers.no_data() || (test.retries_silence && headers.is_none())) {
        co_await car.wait_longer();
        headers = co_await car.at("AT H1", "OK");
    }
    car.show(fill(QStringLiteral("Got proper reply: ( %@)"), {headers.text()}));
    if (!test.toast.isEmpty())
        car.view.show_toast(fill(test.toast, {localised(QStringLiteral("TOAST_STARTING"))}));

    QStringList identifiers;
    co_await test.find_identifiers(car, identifiers);
    for (qsizetype item = 0; item < identifiers.size(); ++item) {
        car.progress(item, identifiers.size());
        const reply what_came = co_await car.ask(QStringLiteral("06 ") + identifiers[item]);
        take_test(car, test, identifiers[item], item, what_came);
        const QString querying = fill(
            test.querying, {QString::number(item + test.counts_from), QString::number(identifiers.size())});
        car.view.show_toast(querying);
        car.show(querying);
    }
    car.show("Current task done!");
    log_rows(car, test);
    car.write_report();
    car.view.play_sound(sound_done);
}

talk find_monitors(diagnostic_talk& car, monitor_range monitors, QStringList& identifiers) {
    if (!is_can(car.link.adapter().cur_protocol()))
        nothing_there(car, QStringLiteral("Not Supported by your vehicle"), sound_done);
    const reply support = co_await car.ask(monitors.support_request);
    if (support.no_data())
        nothing_there(car, monitors.no_data, sound_done);
    const QString bitmap = support.ecus().value(0).data.mid(4, 8);
    for (int n = 0; n < monitors.count; ++n) {
        const QString identifier = convertByte2HexStr(monitors.first + static_cast<unsigned>(n));
        if (is_this_code_available(bitmap, identifier, monitors.map))
            identifiers += identifier;
    }
    if (identifiers.isEmpty())
        nothing_there(car, QStringLiteral("Not available or No data"), sound_no_identifier);
}

} // namespace brivant
