#include "diagnostics/answer_faults.h"
#include "diagnostics/diagnostic_talk.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"

#include <QDateTime>
#include <QLocale>

namespace brivant {

namespace {

constexpr int most_retries = 2;
constexpr unsigned mil_bit = 0x80;

// Bytes A to D of each ECU stand after "4101": MIL and number of codes, then the readiness of its monitors.
void evaluate_monitor_status(diagnostic_talk& car, const reply& status) {
    car.results.no_of_ecus = 0;
    car.results.no_of_codes = 0;
    car.results.milLamp = false;
    car.results.readinessFlagsArray.clear();
    if (!status.holds_nothing()) {
        car.results.no_of_ecus = static_cast<int>(status.ecus().size());
        for (const ecu_said& ecu : status.ecus()) {
            if (!ecu.data.startsWith(QLatin1String("4101")) || ecu.data.size() < 12)
                continue; // refused, or cut
            const unsigned a = convertStr2Byte(QStringView(ecu.data).sliced(4, 2));
            if (a & mil_bit) {
                car.results.milLamp = true;
                car.results.no_of_codes += static_cast<int>(a & ~mil_bit);
            }
            if (&ecu == status.engine())
                car.results.readinessFlagsArray = car.toolies.handle_readiness_codes(ecu.data.sliced(6, 6));
        }
    }
    car.tell(part::readiness, {QStringLiteral("0101"), status, {}, {}});
}

void note_the_read(diagnostic_talk& car) {
    const QString now = QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
    car.results.cur_err_msg = fill(QStringLiteral("Read on: %@"), {now});
    const qsizetype bar = car.link.adapter().protocol_description().indexOf(QLatin1Char('|'));
    if (bar >= 0)
        car.link.describe_protocol(car.link.adapter().protocol_description().sliced(bar + 1));

    car.results.xtraInfoArray = {
        car.results.cur_err_msg,
        fill(QStringLiteral("Interface: %@"), {car.link.adapter().interface_description()}),
        fill(QStringLiteral("Protocol: %@"), {car.link.adapter().protocol_description()}),
        fill(QStringLiteral("No of ECUS: %d"), {QString::number(car.results.no_of_ecus)}),
    };
    car.results.code_count_label = QString::number(car.results.no_of_codes);
    car.results.mil_label = car.results.milLamp ? QStringLiteral("ON") : QStringLiteral("OFF");
    car.results.read_on_label = car.results.cur_err_msg;
    car.results.xtra_info_label = car.results.xtraInfoArray.join(QLatin1Char('\n'));
    car.view.reload(part::labels);
}

// A refused or damaged answer says nothing of how many codes there are.
answer list_codes(diagnostic_talk& car, const reply& codes) {
    answer listed{QStringLiteral("03"), codes, {}, {}};
    if (codes.is_none())
        return listed;
    const bool refused = codes.text().contains(QLatin1Char('?')); // anywhere in it
    if (!refused && !codes.holds_nothing()) {
        const obd_groups codes_by_ecu = car.toolies.l_workoutReadCodes(codes);
        car.load_the_codes();
        car.append_to_log(
            fill(QStringLiteral("------DTC Codes read:%@------------- \n"), {car.todays_date()}));
        for (const obd_group& ecu : codes_by_ecu) {
            for (const QString& code : ecu.pidSet)
                listed.rows += code_row{code, ecu.header};
        }
    }
    if (!listed.rows.isEmpty())
        return listed;
    QStringList faults = faults_of(listed);
    if (codes.no_data() && car.results.no_of_codes > 0)
        faults = QStringList(
            QStringLiteral("the car announces codes: %1, and sent none").arg(car.results.no_of_codes));
    const bool are_none = faults.isEmpty() || (codes.no_data() && car.results.no_of_codes == 0);
    listed.rows += are_none ? words_row{localised(QStringLiteral("NO_CODES"))} : not_read(faults);
    return listed;
}

void tell_result(diagnostic_talk& car, const reply& answer) {
    const qsizetype codes = rows_of<code_row>(car.results.rows(part::codes)).size();
    car.show("Rerieve codes successfully");
    car.show(codes == car.results.no_of_codes ? "Codes read!. Scroll for full description"
                                              : "Codes read...but different no of codes recvd");
    if (car.results.no_of_ecus == 0 && answer.holds_nothing())
        car.give_up_the_car();
}

} // namespace

talk work_out_read_codes(diagnostic_talk& car) {
    co_await car.ready("Starting Read codes");
    car.view.show_toast(fill(QStringLiteral("%@ Read DTC "), {localised(QStringLiteral("TOAST_STARTING"))}));
    console_log(QStringLiteral("starting work_out_read_code******************"));
    car.results.mil_label.clear();
    car.results.code_count_label.clear();
    car.results.read_on_label.clear();
    car.view.reload(part::labels);

    reply status;
    for (int tries = 0; tries <= most_retries; ++tries) {
        if (const reply headers = co_await car.at("AT H1", "OK"); headers.is_none()) {
            car.view.show_message(localised(QStringLiteral("DLG_TIMEDOUT_RETRY")),
                                  QStringLiteral("Timed out .. Try again"));
            throw left{};
        }
        status = co_await car.ask("01 01");
        if (!status.no_data() || tries == most_retries)
            break;
        co_await car.wait_longer();
    }
    car.show(fill(QStringLiteral("Initial  reply: [%@]"), {status.text()}));
    evaluate_monitor_status(car, status);

    car.view.show_toast(QStringLiteral("Querying for confirmed DTC(s) "));
    const reply codes = co_await car.ask("03");
    note_the_read(car);
    car.tell(part::codes, list_codes(car, codes));
    if (codes.is_none())
        throw left{QStringLiteral("Failed to receive the error codes")};
    tell_result(car, codes);
    car.write_report();
    car.view.play_sound(sound_done);
}

} // namespace brivant
