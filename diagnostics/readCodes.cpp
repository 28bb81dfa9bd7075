#include "diagnostics/readCodes.h"

#include "obd/trouble_codes.h"

namespace {
constexpr int idle = -1;
}

readCodes::readCodes(process_state& process, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                     diagnostic_results& its_results)
    : context{process, its_link, its_toolies, its_view, process.interface_description, process.protocol_description},
      state(process), results_(its_results), pid_loop(context, *this), connector(context, *this, pid_loop),
      reading(context, *this), clearing(context, *this) {}

readCodes::~readCodes() {
    operation_ended = nullptr;
    if (context.link.mainViewController() == this)
        context.link.set_controller(nullptr);
}

// --- what the person starts and stops ------------------------------------------------------------------------

void readCodes::l_readCodes() {
    reading.reset_retries();
    start_operation(op_read_codes, QStringLiteral("Starting Read Codes"));
}

void readCodes::clearCodes() {
    asked = std::make_shared<int>(0);
    context.view.ask_yes_no(QStringLiteral("Are you sure you want clear DTC Codes "),
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

void readCodes::read_link_info() {
    start_operation(op_link_info, QStringLiteral("Asking the adapter and the car who they are"));
}

void readCodes::start_operation(operation code, const QString& status) {
    if (running)
        leave_cur_op_gracefully(QStringLiteral(""));
    running = true;
    done = false;
    slowed = false;
    cur_reply_cp.clear();
    state.cur_op = code;
    state.cur_task = code;
    state.cur_step = 0;
    state.no_confirm_count = 0;
    if (code == op_read_codes) {
        results_.codesReadArray.clear();
        context.view.reload(QStringLiteral("codes"));
    }
    set_status_msg(status);
    context.view.show_busy(true);
    if (context.link.openInterfaceConnection())
        context.link.l_work_current_task(QString()); // else the link starts it when it is open
}

void readCodes::stop() {
    context.link.stop_opening();
    leave_cur_op_gracefully(QStringLiteral("Stopped"));
}

// --- what the link tells -------------------------------------------------------------------------------------

void readCodes::work_current_task(const QString& status) {
    if (!running)
        return;
    if (context.link.is_redo())
        return context.link.send_again();
    if (!status.isEmpty())
        set_status_msg(status);
    switch (state.cur_task) {
    case op_initialise: return connector.run(cur_reply_cp);
    case op_read_codes: return reading.run(cur_reply_cp);
    case op_clear_codes: return clearing.run(cur_reply_cp);
    case op_link_info:
        if (!connect_first())
            task_done();
        return;
    default: return;
    }
}

void readCodes::handleOBDRcvdMsg(const QString& reply) {
    if (!running)
        return;
    if (reply.contains(QLatin1String("Timeout"))) {
        context.view.beep();
        return leave_cur_op_gracefully(QStringLiteral("Cur op timed out... Please Check/retry"));
    }
    cur_reply_cp = reply;
    if (state.pid_loop_active == 16)
        pid_loop.l_inner_process_pid_support(reply);
    else
        work_current_task(QString());
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
    if (slowed) {
        state.adapter_ready = false;
        state.adapter_known = false;
        slowed = false;
    }
    if (!running)
        return;
    running = false;
    context.view.reload(QStringLiteral("operation"));
    if (operation_ended)
        operation_ended(done);
}

// --- what the step machines ask ------------------------------------------------------------------------------

bool readCodes::connect_first() {
    if (state.adapter_ready)
        return false;
    state.cur_task = op_initialise;
    state.cur_step = 0;
    connector.run(QString());
    return true;
}

void readCodes::task_done() {
    done = true;
    leave_cur_op_gracefully(QStringLiteral(""));
}

void readCodes::load_the_codes() {
    if (results_.P0_Codes.isEmpty())
        results_.P0_Codes = context.toolies.lists()
                                .get_dictionary_from_resource(QStringLiteral("P0_Codes"), QStringLiteral("txt"),
                                                              QStringLiteral(" "))
                                .value_or(QMap<QString, QString>());
}

QString readCodes::description_of(const QString& code) {
    load_the_codes();
    return look_upCode(code, results_.P0_Codes);
}

void readCodes::regainFocus() {
    context.view.reload(QStringLiteral("labels"));
}

void readCodes::prep_and_send_cmd(const QString& command, int this_time_out) {
    const QString bare = command.endsWith(QLatin1Char('\r')) ? command.chopped(1) : command;
    context.link.sendOBDcmd_n(bare + QLatin1Char('|') + QString::number(this_time_out), QStringLiteral("OK"), false);
}
