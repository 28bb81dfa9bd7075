#include "diagnostics/diagnostic_talk.h"

#include "diagnostics/standard_report.h"
#include "diagnostics/stored_result.h"
#include "obd/trouble_codes.h"
#include "persistence/log_files.h"

namespace brivant {

diagnostic_talk::diagnostic_talk(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies,
                                 screen& its_view, diagnostic_results& its_results,
                                 const app_paths& its_paths)
    : car_talk(its_car, its_link, its_toolies, its_view), results(its_results),
      log(its_paths, its_toolies.store()) {}

talk work_out_link_info(diagnostic_talk& car) {
    co_await car.ready(QString());
    if (car.state.times_told() == 0) // what is known of the car is from before
        car.give_up_the_car();
}

void diagnostic_talk::give_up_the_car() {
    link.set_up_next_time(false);
    throw step_failure(no_ecu_answers);
}

void diagnostic_talk::progress(qsizetype done, qsizetype total) {
    results.progress_done = static_cast<int>(done);
    results.progress_total = static_cast<int>(total);
    view.reload(part::progress);
}

void diagnostic_talk::tell(part which, const answer& what) {
    results.answers[which] += what;
    results.answers[which].last().milliseconds = since_start.isValid() ? since_start.elapsed() : 0;
    view.reload(which);
}

void diagnostic_talk::forget(part which) {
    results.answers.remove(which);
    view.reload(which);
}

void diagnostic_talk::load_the_codes() {
    if (results.P0_Codes.isEmpty())
        results.P0_Codes = toolies.lists()
                               .get_dictionary_from_resource(QStringLiteral("P0_Codes"),
                                                             QStringLiteral("txt"), QStringLiteral(" "))
                               .value_or(QMap<QString, QString>());
}

QString diagnostic_talk::description_of(const QString& code) {
    load_the_codes();
    return look_upCode(code, results.P0_Codes);
}

QString diagnostic_talk::todays_date() const {
    return get_todays_date(true, toolies.units() == unit_system::metric, QDateTime::currentDateTime());
}

diagnostic_report diagnostic_talk::report_of(int operation_code) {
    return report_to_show(operation_code, results, toolies, todays_date(),
                          [this](const QString& code) { return description_of(code); });
}

QString diagnostic_talk::store_report(int operation_code) {
    return log.store(report_to_store(operation_code, results, toolies, todays_date(),
                                     [this](const QString& code) { return description_of(code); }),
                     replies_behind(operation_code, results), state.cur_veh_id());
}

QString diagnostic_talk::store_anyway(int operation_code) {
    log.work_out_log_file(operation_code, true, toolies.units() == unit_system::metric);
    const QString problem = store_report(operation_code);
    log.close();
    return problem;
}

void diagnostic_talk::write_report() {
    if (!log.is_on())
        return;
    not_stored = store_report(cur_op());
    if (!not_stored.isEmpty())
        view.show_message(QString(), not_stored);
}

} // namespace brivant
