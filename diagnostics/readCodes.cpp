#include "diagnostics/readCodes.h"

#include "diagnostics/standard_report.h"
#include "obd/trouble_codes.h"
#include "persistence/log_files.h"

namespace {
constexpr int idle = -1;
}

readCodes::readCodes(process_state& process, adapter_link& its_link, mac_toolies& its_toolies,
                     screen& its_view, diagnostic_results& its_results, const app_paths& its_paths)
    : context{process,
              its_link,
              its_toolies,
              its_view,
              process.interface_description,
              process.protocol_description},
      state(process), results_(its_results), pid_loop(context, *this), connector(context, *this, pid_loop),
      reading(context, *this), clearing(context, *this), pending(context, *this), permanent(context, *this),
      vehicle(context, *this), mode6(context, *this, pid_loop), misfire(context, *this),
      o2_tests(context, *this), extras(context, *this), log(its_paths, its_toolies.store()) {}

readCodes::~readCodes() {
    operation_ended = nullptr;
    if (context.link.mainViewController() == this)
        context.link.set_controller(nullptr);
}

// --- what the person starts and stops ----------------------------------------------------------------------

void readCodes::l_readCodes() {
    read_codes_and(context.toolies.standard_reading() ? &readCodes::readPermanent : nullptr);
}

void readCodes::read_codes_and(next_operation next) {
    reading.reset_retries();
    for (const result_list list : {result_list::codes, result_list::status, result_list::permanent})
        results_.kept.remove(list);
    context.view.reload(QStringLiteral("permanent"));
    start_operation(op_read_codes, QStringLiteral("Starting Read Codes"), next);
}

void readCodes::clearCodes() {
    asked = std::make_shared<int>(0);
    context.view.ask_yes_no(
        QStringLiteral("Are you sure you want clear DTC Codes "),
        QStringLiteral("Will clear DTC, freeze data,O2 sensor test data and the like. Will need  "
                       "few driving cycles to get back some of the data"),
        [this, question = std::weak_ptr<int>(asked)](bool yes) {
            if (!question.expired() && yes)
                start_clearing();
        });
}

void readCodes::start_clearing() {
    start_operation(op_clear_codes, QStringLiteral("starting out"));
}

void readCodes::start_with_empty_list(operation code, const QString& status, QStringList& list,
                                      const QString& list_name, result_list kept) {
    results_.kept.remove(kept);
    list.clear();
    context.view.reload(list_name);
    start_operation(code, status);
}

void readCodes::forget_pending() {
    results_.kept.remove(result_list::freeze);
    results_.kept.remove(result_list::pending);
    results_.pending_received = true;
    results_.freezeArray.clear();
    context.view.reload(QStringLiteral("freeze"));
}

void readCodes::readPendingFreezeCodes() {
    forget_pending();
    start_with_empty_list(op_pending_freeze, QStringLiteral("Starting Read Pending/Freeze Codes"),
                          results_.pendingArray, QStringLiteral("pending"), result_list::pending);
}

void readCodes::readPermanent() {
    results_.kept.remove(result_list::permanent);
    context.view.reload(QStringLiteral("permanent"));
    start_operation(op_permanent, QStringLiteral("Reading the permanent codes"));
}

void readCodes::readVehicleInfo() {
    start_with_empty_list(op_vehicle_info, QStringLiteral("Starting Read vehicle Info"),
                          results_.vehInfoArray, QStringLiteral("vehicle"), result_list::vehicle);
}

void readCodes::readMode6Support() {
    start_with_empty_list(op_mode6, QStringLiteral("Starting Read Mode 6"), results_.mode6Array,
                          QStringLiteral("mode6"), result_list::mode6);
}

void readCodes::readMisfire() {
    start_with_empty_list(op_misfire, QStringLiteral("Starting Read Misfire"), results_.misfireArray,
                          QStringLiteral("misfire"), result_list::misfire);
}

void readCodes::readO2() {
    start_with_empty_list(op_o2_tests, QStringLiteral("Starting O2 Read "), results_.o2XtraArray,
                          QStringLiteral("o2"), result_list::o2);
}

void readCodes::readXtras() {
    results_.xtrasArray.clear();
    context.view.reload(QStringLiteral("extras"));
    start_operation(op_extras, QStringLiteral("Starting Read Vehicle Xtras"));
}

void readCodes::read_for_report() {
    results_.pendingArray.clear(); // the report stored after the codes holds nothing of an earlier read
    context.view.reload(QStringLiteral("pending"));
    forget_pending();
    read_codes_and(&readCodes::readPendingFreezeCodes);
}

void readCodes::read_link_info() {
    start_operation(op_link_info, QStringLiteral("Asking the adapter and the car who they are"));
}

void readCodes::start_operation(operation code, const QString& status, next_operation next) {
    if (running)
        leave_cur_op_gracefully(QStringLiteral(""));
    running = true;
    done = false;
    slowed = false;
    follows = next;
    results_.progress_done = 0;
    results_.progress_total = 0;
    results_.car_offers_none = false;
    context.view.reload(QStringLiteral("progress"));
    cur_reply_cp.clear();
    context.begin(code);
    if (code == op_read_codes) {
        results_.codesReadArray.clear();
        context.view.reload(QStringLiteral("codes"));
    }
    if (code != op_clear_codes && code != op_link_info && code != op_permanent)
        log.work_out_log_file(code, state.log_runs, context.toolies.units() == unit_system::metric);
    set_status_msg(status);
    context.view.show_busy(true);
    context.start();
}

void readCodes::stop() {
    context.link.stop_opening();
    leave_cur_op_gracefully(QStringLiteral("Stopped"));
}

// --- what the link tells -----------------------------------------------------------------------------------

void readCodes::work_current_task(const QString& status) {
    if (!running)
        return;
    if (context.link.is_redo())
        return context.link.send_again();
    if (!status.isEmpty())
        set_status_msg(status);
    if (step_machine* machine = machine_of(state.cur_task))
        machine->run(cur_reply_cp);
    else if (state.cur_task == op_link_info && !connect_first())
        task_done();
}

step_machine* readCodes::machine_of(int task) {
    switch (task) {
    case op_initialise: return &connector;
    case op_read_codes: return &reading;
    case op_clear_codes: return &clearing;
    case op_pending_freeze: return &pending;
    case op_permanent: return &permanent;
    case op_vehicle_info: return &vehicle;
    case op_mode6: return &mode6;
    case op_misfire: return &misfire;
    case op_o2_tests: return &o2_tests;
    case op_extras: return &extras;
    default: return nullptr;
    }
}

void readCodes::handleOBDRcvdMsg(const QString& reply) {
    if (!running)
        return;
    if (reply.contains(QLatin1String("Timeout"))) {
        context.view.beep();
        return leave_cur_op_gracefully(QStringLiteral("Cur op timed out... Please Check/retry"));
    }
    if (is_adapter_lost())
        return leave_cur_op_gracefully(adapter_was_reset);
    cur_reply_cp = reply;
    if (state.pid_loop_active == 16)
        pid_loop.l_inner_process_pid_support(reply);
    else
        work_current_task(QString());
}

// Without headers and with its echo on, its replies would be read as something else. Clearing has asked for
// all it wants.
bool readCodes::is_adapter_lost() const {
    return !state.adapter_ready && state.cur_task != op_initialise && state.cur_task != op_clear_codes;
}

void readCodes::leave_cur_op_gracefully(const QString& status) {
    context.link.stop_timers();
    context.link.abandon_command();
    if (!status.isEmpty())
        set_status_msg(status);
    context.view.show_busy(false);
    context.view.show_toast(QStringLiteral(""));
    state.pid_loop_active = -1;
    state.pid_loop_phase = -1;
    state.cur_step = idle;
    state.no_confirm_count = 0;
    state.obd_msgs.clear();
    reading.reset_retries();
    pending.reset_retries();
    mode6.reset_retries();
    misfire.reset_retries();
    o2_tests.reset_retries();
    log.close();
    if (slowed) {
        state.adapter_ready = false;
        state.adapter_known = false;
        slowed = false;
        context.link.far_end_changed();
    }
    if (!running)
        return;
    running = false;
    context.view.reload(QStringLiteral("operation"));
    if (operation_ended)
        operation_ended(done);
}

// --- what the step machines ask ----------------------------------------------------------------------------

bool readCodes::connect_first() {
    if (state.adapter_ready)
        return false;
    state.cur_task = op_initialise;
    state.cur_step = 0;
    connector.run(QString());
    return true;
}

void readCodes::task_done() {
    if (const next_operation next = std::exchange(follows, nullptr)) { // the first half has no end of its own
        const auto told_at_the_end = std::exchange(operation_ended, nullptr);
        leave_cur_op_gracefully(QStringLiteral(""));
        operation_ended = told_at_the_end;
        return (this->*next)();
    }
    done = true;
    leave_cur_op_gracefully(QStringLiteral(""));
}

void readCodes::load_the_codes() {
    if (results_.P0_Codes.isEmpty())
        results_.P0_Codes = context.toolies.lists()
                                .get_dictionary_from_resource(QStringLiteral("P0_Codes"),
                                                              QStringLiteral("txt"), QStringLiteral(" "))
                                .value_or(QMap<QString, QString>());
}

QString readCodes::description_of(const QString& code) {
    load_the_codes();
    return look_upCode(code, results_.P0_Codes);
}

QString readCodes::todays_date() const {
    return get_todays_date(true, context.toolies.units() == unit_system::metric,
                           QDateTime::currentDateTime());
}

diagnostic_report readCodes::report_of(int operation_code) {
    const auto describe = [this](const QString& code) {
        load_the_codes();
        return look_upCode(code, results_.P0_Codes);
    };
    if (context.toolies.standard_reading())
        return standard_report(operation_code, results_, context.toolies, todays_date(), describe);
    return work_out_text_4_log(operation_code, results_, todays_date(), describe)
        .value_or(diagnostic_report());
}

void readCodes::write_report() {
    if (!log.is_on())
        return;
    const QString problem = log.store(report_of(state.cur_op), state.cur_veh_id);
    if (!problem.isEmpty())
        context.view.show_message(QString(), problem);
}

void readCodes::regainFocus() {
    context.view.reload(QStringLiteral("labels"));
}

void readCodes::prep_and_send_cmd(const QString& command, int this_time_out) {
    const QString bare = command.endsWith(QLatin1Char('\r')) ? command.chopped(1) : command;
    context.link.sendOBDcmd_n(bare + QLatin1Char('|') + QString::number(this_time_out), QStringLiteral("OK"),
                              false);
}
