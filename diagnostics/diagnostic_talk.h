#pragma once

#include "diagnostics/diagnostic_results.h"
#include "diagnostics/session_log.h"
#include "operations/car_talk.h"

#include <QElapsedTimer>

namespace brivant {

// Why an operation failed to which the adapter passed on no answer at all.
inline const QString no_ecu_answers =
    QStringLiteral("the adapter answers, but no ECU of the car does: switch the ignition on and read again");

// What the diagnostic operations talk through: the car, and what they leave behind.
class diagnostic_talk : public car_talk {
public:
    // Everything referred to outlives it.
    diagnostic_talk(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                    diagnostic_results& its_results, const app_paths& its_paths);

    void progress(qsizetype done, qsizetype total);
    // Adds what a request brought to the part's results. A reply that was given up on, because its first ECU
    // refuses, is told too: it may hold another's answer.
    void tell(part which, const answer& what);
    // Rows about what nobody was asked.
    void tell(part which, const result_row& row) { tell(which, facts({row})); }
    // Empties the part's results.
    void forget(part which);

    void load_the_codes();
    // The code's description: see look_upCode of obd/trouble_codes.h.
    QString description_of(const QString& code);
    // Ends the operation as failed, because nobody in the car answers; the next one looks for the car anew.
    [[noreturn]] void give_up_the_car();
    // While logging is on: writes the text to the session file; writes and stores the operation's report.
    void append_to_log(const QString& text) { log.append_to_log(text); }
    void write_report();
    // Why the report that was to be stored last was not, "" when it was.
    const QString& storing_problem() const { return not_stored; }
    // Stores the operation's report whether logging is on or off; a sentence when it could not be stored.
    QString store_anyway(int operation_code);
    // The report of an operation from what was read last, as it is shown: see report_to_show.
    diagnostic_report report_of(int operation_code);
    // The date of a heading.
    QString todays_date() const;

    diagnostic_results& results;

protected:
    void started() override { since_start.start(); }
    session_log log;

private:
    QElapsedTimer since_start;
    QString not_stored;
    QString store_report(int operation_code);
};

// The operations.
talk work_out_read_codes(diagnostic_talk& car);     // monitor status and confirmed codes (services 01, 03)
talk work_out_clear_codes(diagnostic_talk& car);    // service 04
talk work_out_link_info(diagnostic_talk& car);      // the adapter set up, and who answers
talk work_out_pending_freeze(diagnostic_talk& car); // pending codes and the freeze frame (07, 02)
talk work_out_permanent(diagnostic_talk& car);    // permanent codes and this drive cycle's monitors (0A, 41)
talk work_out_vehicle_info(diagnostic_talk& car); // voltage, VIN, a value of every supported PID of every ECU
talk work_out_xtras(diagnostic_talk& car);        // maker-specific values (22), headers off
talk work_mode6_support(diagnostic_talk& car);    // every test result (06)
talk work_misfire_reading(diagnostic_talk& car);  // the misfire counters (06 A1 to BE), CAN only
talk work_O2_mode(diagnostic_talk& car);          // the oxygen-sensor monitors (06 01 to 10), CAN only

} // namespace brivant
