#include "diagnostics/mode6_test.h"

#include "base/string_table.h"
#include "diagnostics/car_presence.h"
#include "diagnostics/mode6_records.h"
#include "obd/mode6_scaling.h"
#include "obd/reply_text.h"

#include <QRegularExpression>

namespace brivant {

namespace {

// The first ECU that does not refuse; where the adapter shows no headers, the answer itself.
std::optional<ecu_said> who_answers(const reply& what_came, const QString& identifier) {
    if (what_came.holds_nothing())
        return std::nullopt;
    if (what_came.headers_shown()) {
        const ecu_said* ecu = what_came.answering();
        return ecu ? std::optional(*ecu) : std::nullopt;
    }
    const QString answer = QStringLiteral("46") + identifier;
    if (!is_can(what_came.protocol()))
        return ecu_said{
            {}, what_came.lines().filter(QRegularExpression(u'^' + answer)), what_came.protocol(), {}};
    const QString data = what_came.data_without_headers(answer);
    const QString single_frame = QStringLiteral("0");
    return ecu_said{{}, {single_frame}, what_came.protocol(), data};
}

void take_test(diagnostic_talk& car, const mode6_test& test, const QString& identifier, qsizetype item,
               const reply& what_came) {
    answer told{QStringLiteral("06") + identifier, what_came, {}, {}};
    if (const auto ecu = who_answers(what_came, identifier)) {
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

talk nothing_there(diagnostic_talk& car, QString text, int sound) {
    co_await make_sure_the_car_answers(car);
    leave_without_results(car, text, sound);
}

void leave_without_results(diagnostic_talk& car, const QString& text, int sound) {
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
    car_presence presence(car);
    for (qsizetype item = 0; item < identifiers.size(); ++item) {
        car.progress(item, identifiers.size());
        reply what_came;
        co_await presence.ask(car.as_shown(QStringLiteral("06 ") + identifiers[item]), true, what_came);
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
    const int protocol = car.link.adapter().cur_protocol();
    if (protocol <= 0) // none was found
        car.give_up_the_car();
    if (!is_can(protocol))
        leave_without_results(car, QStringLiteral("Not Supported by your vehicle"), sound_done);
    const reply support = co_await car.ask_as_shown(monitors.support_request);
    if (support.no_data())
        co_await nothing_there(car, monitors.no_data, sound_done);
    const auto told = who_answers(support, monitors.support_request.last(2));
    const QString bitmap = told ? told->data.mid(4, 8) : QString();
    for (int n = 0; n < monitors.count; ++n) {
        const QString identifier = convertByte2HexStr(monitors.first + static_cast<unsigned>(n));
        if (is_this_code_available(bitmap, identifier, monitors.map))
            identifiers += identifier;
    }
    if (!identifiers.isEmpty())
        co_return;
    const QString text = QStringLiteral("Not available or No data");
    if (told)
        leave_without_results(car, text, sound_no_identifier);
    co_await nothing_there(car, text, sound_no_identifier);
}

} // namespace brivant
