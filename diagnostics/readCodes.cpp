#include "diagnostics/readCodes.h"

#include "persistence/log_files.h"

readCodes::readCodes(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                     diagnostic_results& its_results, const app_paths& its_paths)
    : diagnostic_talk(its_car, its_link, its_toolies, its_view, its_results, its_paths) {}

readCodes::~readCodes() {
    operation_ended = nullptr;
    if (link.mainViewController() == this)
        link.set_controller(nullptr);
}

void readCodes::l_readCodes() {
    read_codes_and(toolies.standard_reading() ? &readCodes::readPermanent : nullptr);
}

void readCodes::read_codes_and(next_operation next) {
    for (const result_list list : {result_list::codes, result_list::status, result_list::permanent})
        results.kept.remove(list);
    view.reload(QStringLiteral("permanent"));
    results.codesReadArray.clear();
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

void readCodes::start_with_empty_list(const read& what, QStringList& list, const char* list_name,
                                      result_list kept) {
    results.kept.remove(kept);
    list.clear();
    view.reload(list_name);
    start_operation(what);
}

void readCodes::forget_pending() {
    results.kept.remove(result_list::freeze);
    results.kept.remove(result_list::pending);
    results.pending_received = true;
    results.freezeArray.clear();
    view.reload(QStringLiteral("freeze"));
}

void readCodes::readPendingFreezeCodes() {
    forget_pending();
    start_with_empty_list({op_pending_freeze, "Starting Read Pending/Freeze Codes",
                           "work_out_pending_freeze::Did not fully complete [ %@ ]", work_out_pending_freeze},
                          results.pendingArray, "pending", result_list::pending);
}

void readCodes::readPermanent() {
    results.kept.remove(result_list::permanent);
    view.reload(QStringLiteral("permanent"));
    start_operation({op_permanent, "Reading the permanent codes",
                     "The permanent codes were not read completely: %@", work_out_permanent});
}

void readCodes::readVehicleInfo() {
    start_with_empty_list({op_vehicle_info, "Starting Read vehicle Info",
                           "work_vehicle_info::Did not fully complete(%@)", work_out_vehicle_info},
                          results.vehInfoArray, "vehicle", result_list::vehicle);
}

void readCodes::readMode6Support() {
    start_with_empty_list({op_mode6, "Starting Read Mode 6",
                           "work_mode6_support::Did not fully complete: ( %@)", work_mode6_support},
                          results.mode6Array, "mode6", result_list::mode6);
}

void readCodes::readMisfire() {
    start_with_empty_list({op_misfire, "Starting Read Misfire", "work_misfire::Did not fully complete: ( %@)",
                           work_misfire_reading},
                          results.misfireArray, "misfire", result_list::misfire);
}

void readCodes::readO2() {
    start_with_empty_list(
        {op_o2_tests, "Starting O2 Read ", "work_o2_mode::Did not fully complete: ( %@)", work_O2_mode},
        results.o2XtraArray, "o2", result_list::o2);
}

void readCodes::readXtras() {
    results.xtrasArray.clear();
    view.reload(QStringLiteral("extras"));
    start_operation({op_extras, "Starting Read Vehicle Xtras",
                     "work_vehicle_info::Did not fully complete(%@)", work_out_xtras});
}

void readCodes::read_for_report() {
    results.pendingArray.clear(); // the report stored after the codes holds nothing of an earlier read
    view.reload(QStringLiteral("pending"));
    forget_pending();
    read_codes_and(&readCodes::readPendingFreezeCodes);
}

void readCodes::read_link_info() {
    start_operation({op_link_info, "Asking the adapter and the car who they are", "%@",
                     [](diagnostic_talk& car) { return car.ready(QString()); }});
}

void readCodes::start_operation(const read& what, next_operation next) {
    if (is_running())
        leave_cur_op_gracefully(QStringLiteral(""));
    follows = next;
    results.car_offers_none = false;
    progress(0, 0);
    if (what.code == op_read_codes)
        view.reload(QStringLiteral("codes"));
    if (what.code != op_clear_codes && what.code != op_link_info && what.code != op_permanent)
        log.work_out_log_file(what.code, toolies.settings().value(setting::log_runs),
                              toolies.units() == unit_system::metric);
    start({what.code, what.status, what.failure, what.logged,
           [this, begin = what.begin] { return begin(*this); }});
}

void readCodes::task_done() {
    const next_operation next = std::exchange(follows, nullptr);
    if (!next)
        return diagnostic_talk::task_done();
    close(QString()); // the first half has no end of its own
    (this->*next)();
}

void readCodes::regainFocus() {
    view.reload(QStringLiteral("labels"));
}

void readCodes::prep_and_send_cmd(const QString& command, int this_time_out) {
    const QString bare = command.endsWith(u'\r') ? command.chopped(1) : command;
    link.sendOBDcmd_n(bare + u'|' + QString::number(this_time_out), QStringLiteral("OK"), false);
}
