#include "diagnostics/car_presence.h"

#include "base/string_table.h"
#include "obd/vin.h"

namespace brivant {

namespace {

value_row xtraInfo_item(diagnostic_talk& car, const reply& what_came, const QString& command,
                        const QString& this_label) {
    const QString data = what_came.data_without_headers(positive_reply_of(command));
    if (data.isEmpty()) // refused, no data, or not all of it
        return {{}, this_label, not_available, {}};
    if (this_label == QLatin1String("VIN"))
        return {{}, this_label, pullAsciiStr(QString(data.mid(6))), {}};
    return {{}, this_label, car.toolies.translateResponse_subaru(data) + u' ', {}};
}

} // namespace

talk work_out_xtras(diagnostic_talk& car) {
    co_await car.ready("Starting Read Xtras Info");
    if (const reply headers = co_await car.at("AT H0", "OK"); headers.is_none())
        throw left{QStringLiteral("Failed to receive data")};
    car.results.answers.remove(part::extras);
    QStringList lines = car.toolies.lists()
                            .get_array_from_resource(QStringLiteral("SUBARU_EURO4"), QStringLiteral("txt"))
                            .value_or(QStringList());
    lines.removeIf([](const QString& line) { return line.indexOf(u'|') <= 0; }); // command and label
    if (lines.isEmpty())
        throw step_failure(QStringLiteral("the list of commands is missing"));
    car_presence presence(car);
    bool anybody_answered = false;
    for (qsizetype item = 0; item < lines.size(); ++item) {
        car.progress(item, lines.size());
        const QString command = lines[item].section(u'|', 0, 0);
        const QString expected = positive_reply_of(command) + QStringLiteral("|7F");
        reply value;
        co_await presence.ask(command_of(command + u'\r', expected, false), false, value);
        if (value.is_none() || value.text().contains(u'?'))
            throw left{QStringLiteral("Failed to receive data")};
        anybody_answered |= !value.no_data();
        const value_row row = xtraInfo_item(car, value, command, lines[item].section(u'|', 1));
        car.tell(part::extras, {command, value, {}, {row}});
    }
    if (!anybody_answered) // a car of another maker, or none
        co_await make_sure_the_car_answers(car);
    car.view.play_sound(sound_done);
    car.show("Read succesfully");
}

} // namespace brivant
