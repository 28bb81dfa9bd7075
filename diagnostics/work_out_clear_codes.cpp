#include "base/string_table.h"
#include "diagnostics/diagnostic_talk.h"

#include <algorithm>

namespace brivant {

namespace {

void forget_what_was_read(diagnostic_talk& car) {
    car.show(car.results.cur_err_msg);
    car.view.show_busy(false);
    car.results.readinessFlagsArray.clear();
    for (const part which : {part::codes, part::readiness, part::permanent})
        car.forget(which);
    car.results.code_count_label = QStringLiteral("No of DTC Codes:");
    car.results.mil_label = QStringLiteral("MIL Lamp:");
    car.results.read_on_label = QStringLiteral("Read on");
    car.results.xtra_info_label.clear();
    car.view.reload(part::labels);
}

// One ECU that refuses keeps its codes, whatever the others say.
bool is_positive(const reply& cleared) {
    QStringList answers;
    if (!cleared.headers_shown())
        answers = cleared.lines();
    else
        for (const ecu_said& ecu : cleared.ecus())
            answers += ecu.data;
    const QString positive = positive_reply_of(QStringLiteral("04"));
    return !answers.isEmpty() && std::all_of(answers.begin(), answers.end(), [&](const QString& answer) {
        return answer.startsWith(positive);
    });
}

} // namespace

// Whatever the reply, the codes count as cleared; the person is told when the car did not say so.
talk work_out_clear_codes(diagnostic_talk& car) {
    co_await car.ready("Starting Clear codes");
    sent_command clear = command_of(QStringLiteral("04\r"), QStringLiteral("44|7F|?"), false);
    clear.why = sent_command::purpose::on_its_own; // sent once: any real answer ends it
    const reply answer = co_await car.send(clear);
    forget_what_was_read(car);
    const QString cleared = QStringLiteral("Codes cleared sucessfully!!");
    car.show(cleared);
    if (is_positive(answer))
        co_return car.part_with(QString(), cleared);
    car.part_with(fill(QStringLiteral("The car did not confirm the clearing (its answer: %@). Switch the "
                                      "ignition on with the engine off, then read the codes again to see "
                                      "whether they are gone."),
                       {QString(answer.text()).replace(u'\r', QStringLiteral(", "))}),
                  cleared);
    throw left{};
}

} // namespace brivant
