#include "base/string_table.h"
#include "diagnostics/answer_faults.h"
#include "diagnostics/diagnostic_talk.h"

#include <algorithm>

namespace brivant {

namespace {

void forget_what_was_read(diagnostic_talk& car) {
    car.results.readinessFlagsArray.clear();
    car.results.pending_received = true;
    for (const part which : {part::codes, part::readiness, part::permanent, part::pending, part::freeze})
        car.forget(which);
    car.results.code_count_label = QStringLiteral("No of DTC Codes:");
    car.results.mil_label = QStringLiteral("MIL Lamp:");
    car.results.read_on_label = QStringLiteral("Read on");
    car.results.xtra_info_label.clear();
    car.view.reload(part::labels);
}

// A reading on the way: `problem` says why it came to nothing.
talk try_to_read(diagnostic_talk& car, talk (*read)(diagnostic_talk&), QString& problem) {
    try {
        co_await read(car);
    } catch (const left& early) {
        problem = early.status;
    } catch (const step_failure& reason) {
        problem = QString::fromUtf8(reason.what());
    }
    if (!car.link.adapter().adapter_ready())
        throw left{adapter_was_reset};
}

// What is there now can be looked up afterwards. Codes that cannot be read, or not be stored, are cleared
// only when the person says so once more.
talk keep_what_is_there(diagnostic_talk& car) {
    forget_what_was_read(car);
    QString problem;
    co_await try_to_read(car, work_out_pending_freeze, problem);
    problem.clear(); // the codes count; the report tells of the others
    co_await try_to_read(car, work_out_read_codes, problem);
    if (problem.isEmpty())
        problem = car.store_anyway(op_read_codes);
    if (problem.isEmpty())
        co_return;
    const bool all_the_same = co_await car.ask_yes_no(
        QStringLiteral("Clear the codes without a record of them?"),
        QStringLiteral("What the car holds now could not be kept (%1).").arg(problem));
    if (!all_the_same)
        throw left{QStringLiteral("The codes were not cleared")};
}

// One ECU that refuses keeps its codes, whatever the others say.
bool is_positive(const reply& cleared) {
    QStringList answers;
    if (!cleared.headers_shown())
        answers = cleared.lines();
    else
        for (const ecu_said& ecu : cleared.ecus())
            answers += ecu.data;
    answers.removeAll(QStringLiteral("04")); // the echo, on again after a reset
    const QString positive = positive_reply_of(QStringLiteral("04"));
    return !answers.isEmpty() && std::all_of(answers.begin(), answers.end(), [&](const QString& answer) {
        return answer.startsWith(positive);
    });
}

// "" when the car has confirmed it.
QString why_not_cleared(const reply& cleared) {
    if (is_positive(cleared))
        return QStringLiteral("");
    const QStringList faults = faults_of({QStringLiteral("04"), cleared, {}, {}});
    const QString told = cleared.is_none() || !faults.isEmpty()
                             ? faults.join(QStringLiteral("; "))
                             : QString(cleared.text()).replace(u'\r', QStringLiteral(", "));
    return QStringLiteral(
               "The car did not confirm the clearing (its answer: %1). Switch the ignition on with "
               "the engine off, and clear again.")
        .arg(told);
}

} // namespace

talk work_out_clear_codes(diagnostic_talk& car) {
    co_await car.ready("Starting Clear codes");
    car.results.not_cleared.reset();
    co_await keep_what_is_there(car);

    sent_command clear = command_of(QStringLiteral("04\r"), QStringLiteral("44|7F|?|OK"), false);
    clear.why = sent_command::purpose::on_its_own; // sent once: any real answer ends it
    const reply answer = co_await car.send(clear);
    car.results.not_cleared = why_not_cleared(answer);
    car.show(car.results.cur_err_msg);
    forget_what_was_read(car);
    const QString cleared = QStringLiteral("Codes cleared sucessfully!!");
    const bool is_cleared = car.results.not_cleared->isEmpty();
    if (is_cleared)
        car.show(cleared);

    QString problem;
    co_await try_to_read(car, work_out_read_codes, problem);
    if (!is_cleared)
        throw failed{*car.results.not_cleared};
    car.show(cleared);
    car.part_with(QString(), cleared);
}

} // namespace brivant
