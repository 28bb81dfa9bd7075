#include "diagnostics/readCodes.h"

#include "persistence/log_files.h"

namespace brivant {

readCodes::readCodes(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                     diagnostic_results& its_results, const app_paths& its_paths)
    : diagnostic_talk(its_car, its_link, its_toolies, its_view, its_results, its_paths) {}

readCodes::~readCodes() {
    operation_ended = nullptr;
    if (link.mainViewController() == this)
        link.set_controller(nullptr);
}

void readCodes::l_readCodes() {
    const bool permanent_too = toolies.standard_reading() && !all.is_on(); // else they come later
    read_codes_and(permanent_too ? &readCodes::readPermanent : nullptr);
}

void readCodes::read_codes_and(next_operation next) {
    for (const part which : {part::codes, part::readiness, part::permanent})
        results.answers.remove(which);
    view.reload(part::permanent);
    start_operation({op_read_codes, "Starting Read Codes", "work_out_read::Did not fully complete [ %@ ]",
                     work_out_read_codes, "work_out_read_codes"},
                    next);
}

void readCodes::clearCodes() {
    asked = std::make_shared<int>(0);
    view.ask_yes_no(QStringLiteral("Are you sure you want clear DTC Codes "),
                    QStringLiteral("Will clear DTC, freeze data,O2 sensor test data and the like. Will need  "
                                   "few driving cycles to get back some of the data"),
                    [this, question = std::weak_ptr<int>(asked)](bool yes) {
                        if (!question.expired() && yes)
                            start_clearing();
                    });
}

void readCodes::start_clearing() {
    start_operation({op_clear_codes, "starting out", "work_out_clear_codes::Did not fully complete [ %@ ]",
                     work_out_clear_codes});
}

void readCodes::read_anew(part which, const read& what) {
    forget(which);
    start_operation(what);
}

void readCodes::forget_pending() {
    results.pending_received = true;
    forget(part::pending);
    forget(part::freeze);
}

void readCodes::readPendingFreezeCodes() {
    forget_pending();
    start_operation({op_pending_freeze, "Starting Read Pending/Freeze Codes",
                     "work_out_pending_freeze::Did not fully complete [ %@ ]", work_out_pending_freeze});
}

void readCodes::readPermanent() {
    read_anew(part::permanent, {op_permanent, "Reading the permanent codes",
                                "The permanent codes were not read completely: %@", work_out_permanent});
}

void readCodes::readVehicleInfo() {
    read_anew(part::vehicle, {op_vehicle_info, "Starting Read vehicle Info",
                              "work_vehicle_info::Did not fully complete(%@)", work_out_vehicle_info});
}

void readCodes::readMode6Support() {
    read_anew(part::mode6, {op_mode6, "Starting Read Mode 6",
                            "work_mode6_support::Did not fully complete: ( %@)", work_mode6_support});
}

void readCodes::readMisfire() {
    read_anew(part::misfire, {op_misfire, "Starting Read Misfire",
                              "work_misfire::Did not fully complete: ( %@)", work_misfire_reading});
}

void readCodes::readO2() {
    read_anew(part::o2, {op_o2_tests, "Starting O2 Read ", "work_o2_mode::Did not fully complete: ( %@)",
                         work_O2_mode});
}

void readCodes::readXtras() {
    read_anew(part::extras, {op_extras, "Starting Read Vehicle Xtras",
                             "work_vehicle_info::Did not fully complete(%@)", work_out_xtras});
}

void readCodes::read_for_report() {
    forget_pending(); // the report stored after the codes holds nothing of an earlier read
    read_codes_and(pending_and_freeze);
}

void readCodes::read_everything() {
    if (!is_running())
        all.start();
}

void readCodes::stop() {
    const bool was_between = all.is_on() && !diagnostic_talk::is_running();
    all.give_up();
    diagnostic_talk::stop();
    if (was_between)
        view.reload(part::operation);
}

void readCodes::read_link_info() {
    start_operation({op_link_info, "Asking the adapter and the car who they are", "%@", work_out_link_info});
}

void readCodes::start_operation(const read& what, next_operation next) {
    all.give_up();
    if (is_running())
        leave_cur_op_gracefully(QStringLiteral(""));
    follows = next;
    results.car_offers_none = false;
    progress(0, 0);
    if (what.code == op_read_codes)
        view.reload(part::codes);
    if (what.code != op_clear_codes && what.code != op_link_info && what.code != op_permanent)
        log.work_out_log_file(what.code, is_logging() && !report_due && next != pending_and_freeze,
                              toolies.units() == unit_system::metric);
    start({what.code, what.status, what.failure, what.logged,
           [this, begin = what.begin] { return begin(*this); }});
}

void readCodes::task_done() {
    const next_operation next = std::exchange(follows, nullptr);
    if (!next)
        return diagnostic_talk::task_done();
    close(QString()); // the first half has no end of its own
    report_due = next == pending_and_freeze && is_logging();
    (this->*next)();
}

bool readCodes::is_logging() const {
    return toolies.settings().value(setting::log_runs);
}

// Both halves of a report are one log; so is the first alone, when the second came to nothing.
void readCodes::told_the_end(bool done) {
    if (std::exchange(report_due, false))
        if (const QString problem = store_anyway(op_read_codes); !problem.isEmpty())
            view.show_message(QString(), problem);
    diagnostic_talk::told_the_end(done);
    all.part_ended(done);
}

void readCodes::regainFocus() {
    view.reload(part::labels);
}

void readCodes::prep_and_send_cmd(const QString& command, int this_time_out) {
    const QString bare = command.endsWith(u'\r') ? command.chopped(1) : command;
    link.sendOBDcmd_n(bare + u'|' + QString::number(this_time_out), QStringLiteral("OK"), false);
}

} // namespace brivant
