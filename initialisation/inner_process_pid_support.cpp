#include "initialisation/inner_process_pid_support.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/ecu_names.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"

#include <QRegularExpression>

namespace {
constexpr int loop_running = 16;
constexpr unsigned group_size = 0x20;
constexpr unsigned last_group = 0xE0;
constexpr qsizetype most_ecus = 16; // a reply that names more is no reply of a car
} // namespace

inner_process_pid_support::inner_process_pid_support(operation_context& its_context,
                                                     task_controller& its_controller)
    : context(its_context), state(its_context.state), controller(its_controller) {}

void inner_process_pid_support::start(const QString& mode, const QString& suffix, int next_step,
                                      finished done) {
    service = mode;
    request_suffix = suffix;
    step_after = next_step;
    when_done = std::move(done);
    asked.reset();
    state.pid_loop_active = loop_running;
    state.pid_loop_phase = 0;
    state.cur_step = next_step;
    l_inner_process_pid_support(QString());
}

void inner_process_pid_support::l_inner_process_pid_support(const QString& reply) {
    try {
        if (state.pid_loop_phase == 0)
            return send_first();
        const QString trimmed = myTrim(reply);
        // A car that is silent to the first request of another service just does not offer it.
        if (trimmed == no_reply && (is_the_car() || group != 0)) {
            const QString text = group == 0 ? localised(QStringLiteral("DLG_FAILED_RCV_PIDS"))
                                            : QStringLiteral("Failed to receive available PIDs ");
            if (!context.link.is_reconnecting()) // else the car may be off, and is waited for
                context.view.show_message(QString(), text);
            return controller.leave_cur_op_gracefully(QStringLiteral(""));
        }
        if (has_no_data(trimmed)) {
            controller.set_status_msg(fill(QStringLiteral("No data for [%@ %@] .. trying next"),
                                           {service, convertByte2HexStr(group)}));
            return no_more_groups();
        }
        take_maps(trimmed);
        if (next_group_wanted())
            return send_next();
        no_more_groups();
    } catch (const std::exception& failure) {
        console_log(QStringLiteral("l_inner_process_pid_support: %1").arg(QString::fromUtf8(failure.what())));
        controller.leave_cur_op_gracefully(QStringLiteral(""));
    }
}

void inner_process_pid_support::send_first() {
    found.clear();
    group = 0;
    state.pid_loop_phase = 1;
    ask(QString());
}

void inner_process_pid_support::send_next() {
    group += group_size;
    ask(QStringLiteral("?"));
}

// With headers the check is by message, and the expected reply has no part in it. Some chips refuse to show
// headers.
void inner_process_pid_support::ask(const QString& expected) {
    const QString request = service + u' ' + convertByte2HexStr(group) + request_suffix;
    context.link.sendOBDcmd_n(request + u'\r', state.headers_shown ? expected : positive_reply_of(request),
                              state.headers_shown);
}

obd_group& inner_process_pid_support::entry_of(const QString& header) {
    for (obd_group& known : found) {
        if (same_ecu(known.header, header, state.cur_protocol))
            return known;
    }
    found.append({header, {}});
    return found.last();
}

void inner_process_pid_support::take_maps(const QString& reply) {
    const QString answer = convertByte2HexStr(convertStr2Byte(service) + 0x40) + convertByte2HexStr(group);
    // Service 02 echoes the frame number between the PID and the map.
    // The older protocols put a byte of their own before the maps of service 06.
    const qsizetype own_byte = service == QLatin1String("06") && !is_can(state.cur_protocol) ? 2 : 0;
    const qsizetype map_at = answer.size() + request_suffix.trimmed().size() + own_byte;
    const auto take = [&](const QString& header, const QString& data) {
        if (data.startsWith(answer) && found.size() < most_ecus)
            entry_of(header).pidSet += pids_of_bitmap(data.mid(map_at, 8), group);
    };
    if (!state.headers_shown) { // who answers cannot be told: the first answer stands for the car
        const QStringList lines = reply_lines(reply).filter(QRegularExpression(u'^' + answer));
        return take(QString(), lines.value(0));
    }
    for (const obd_group& ecu : context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply)))
        take(ecu.header, context.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet));
}

bool inner_process_pid_support::next_group_wanted() const {
    if (group >= last_group)
        return false;
    const QString announced = convertByte2HexStr(group + group_size);
    return std::any_of(found.begin(), found.end(),
                       [&](const obd_group& ecu) { return ecu.pidSet.contains(announced); });
}

void inner_process_pid_support::no_more_groups() {
    if (!is_the_car() || found.isEmpty())
        return go_on();
    if (context.toolies.checkIfSameVehicle(found)) {
        state.available_pids = found;
        return go_on();
    }
    ask_whether_same_car();
}

void inner_process_pid_support::ask_whether_same_car() {
    asked = std::make_shared<int>(0);
    context.view.ask_yes_no(localised(QStringLiteral("LBL_VEH_DIFF_CONTINUE")),
                            localised(QStringLiteral("DLG_VEH_DIFF_CONTINUE")),
                            [this, question = std::weak_ptr<int>(asked)](bool yes) {
                                if (question.expired() || state.pid_loop_active != loop_running)
                                    return; // the operation was left meanwhile
                                if (!yes) {
                                    context.link.stop_opening(); // nor is it tried again
                                    return controller.leave_cur_op_gracefully(QStringLiteral(""));
                                }
                                context.toolies.fixSamplePidsFornewVehicle(found);
                                state.available_pids = found;
                                go_on();
                            });
}

void inner_process_pid_support::go_on() {
    asked.reset();
    state.pid_loop_phase = -1;
    state.pid_loop_active = -1;
    if (when_done)
        when_done(found);
    state.cur_step = step_after;
    controller.work_current_task(QString());
}
