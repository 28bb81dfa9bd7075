#include "livedata/sampling_machine.h"

#include "base/string_table.h"
#include "charts/outward_rounding.h"
#include "livedata/run_log.h"
#include "livedata/second_value.h"
#include "obd/ecu_names.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include "obd/supported_pids.h"

#include <algorithm>

namespace {

const QString fuel_economy = QStringLiteral("E4");
const QString boost_pressure = QStringLiteral("E5");
const QString manifold_pressure = QStringLiteral("0B");

} // namespace

void add_item_to_log_vector(sample_matrix& vector, const QString& this_item_val, int this_idx) {
    if (this_idx == -1)
        vector.add_row();
    else
        vector.set(this_idx, this_item_val);
}

QString requested_pid(const QString& pid) {
    return pid == boost_pressure ? manifold_pressure : pid;
}

sampling_machine::sampling_machine(operation_context& its_context, live_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()), run_(its_host.run()) {
}

void sampling_machine::redo() {
    if (state.cur_step != 1)
        return context.link.send_again();
    state.obd_msgs.clear();
    run(no_reply);
}

// --- before the first request --------------------------------------------------------------------------

bool sampling_machine::not_ready_to_ask() {
    if (host.connect_first())
        return true;
    if (state.headers_shown || run_.headers_asked)
        return false;
    run_.headers_asked = true; // an adapter that refuses is asked once; its replies are then taken without
    send(0, QStringLiteral("AT H1"), QStringLiteral("OK"));
    return true;
}

bool sampling_machine::all_supported() {
    for (const QString& item : std::as_const(results.pid_logitems_list)) {
        const std::optional<sample_item> entry = split_sample_item(item);
        if (!entry || entry->pid == fuel_economy)
            continue;
        if (!isPID_in_avail_pid_list(state.available_pids, {requested_pid(entry->pid), entry->header},
                                     state.cur_protocol)) {
            show("One or more PIDs needed not available for this vehicle");
            leave();
            return false;
        }
    }
    return true;
}

void sampling_machine::ask(int index) {
    run_.cur_log_idx = index;
    ask_pid(requested_pid(row(index).pid));
}

void sampling_machine::ask_pid(const QString& pid) {
    const QString request = QStringLiteral("01 ") + pid;
    if (state.headers_shown)
        send_with_headers(1, request);
    else
        send(1, request, positive_reply_of(request));
}

// --- the reply -----------------------------------------------------------------------------------------

bool sampling_machine::nothing_came(const QString& reply) {
    if (!reply.isEmpty() || state.timeout_retry_count > 0)
        return false;
    state.adapter_ready = false; // the next run initialises it again
    context.link.far_end_changed();
    state.cur_step = 0;
    leave(QStringLiteral("Timed out** .. Try again"));
    return true;
}

const obd_message* sampling_machine::message_of_ecu(const QString& header) const {
    const auto found =
        std::find_if(state.obd_msgs.begin(), state.obd_msgs.end(), [&](const obd_message& message) {
            return same_ecu(message.header, header, state.cur_protocol);
        });
    if (found != state.obd_msgs.end())
        return &*found;
    return state.obd_msgs.isEmpty() ? nullptr : &state.obd_msgs.first();
}

// What a message holds, when it is whole: on CAN its second digit is its length, on ISO 14230-4 the lower six
// bits of its header. A long answer on CAN comes in several frames (ISO 15765-2), of which the first begins
// with a "1".
QString sampling_machine::data_of_message(const obd_message& first) const {
    const QString& body = first.body;
    if (body.size() % 2 != 0 || !is_hex(body))
        return no_reply; // noise on the link, perhaps in the check byte alone
    if (!is_can(state.cur_protocol)) {
        const QString data = context.toolies.data_of_single_message(body);
        const unsigned format = convertStr2Byte(QStringView(first.header).left(2));
        const bool has_length = state.cur_protocol >= 4 && (format & 0x80) != 0;
        return has_length && data.size() < 2 * qsizetype(format & 0x3F) ? no_reply : data;
    }
    if (!body.startsWith(u'1'))
        return body.size() < 2 + 2 * charToNibble(body.at(1)) ? no_reply
                                                              : context.toolies.data_of_single_message(body);
    QStringList frames;
    for (const obd_message& message : std::as_const(state.obd_msgs)) {
        if (message.header == first.header)
            frames += message.body;
    }
    return context.toolies.l_pullOBDFromSingleGroupedMsg(frames);
}

QString sampling_machine::data_of_reply(const QString& reply, const QString& pid,
                                        const QString& header) const {
    if (reply.isEmpty() || has_no_data(reply))
        return no_reply;
    const obd_message* message = message_of_ecu(header);
    const QString data = message ? data_of_message(*message) : reply_lines(reply).value(0);
    const QString answer = QStringLiteral("41") + pid;
    return data.size() >= answer.size() + 2 && data.startsWith(answer) && is_hex(data) ? data : no_reply;
}

QString sampling_machine::data_of_reply(const QString& reply) const {
    const sample_row& asked = results.these_samples.at(cur_log_idx());
    return data_of_reply(reply, requested_pid(asked.pid), asked.item.section(u'|', 1));
}

void sampling_machine::take(int index, const QString& data) {
    work_current_log_item(data, index);
    output_item(index, data);
}

void sampling_machine::output_item(int index, const QString& data) {
    add_item_to_log_vector(results.cur_log_points, data, index);
    host.observer().sample_arrived(index);
}

void sampling_machine::work_current_log_item(const QString& reply, int index) {
    sample_row& its_row = row(index);
    const second_value read = read_value(reply, context.toolies);
    its_row.value = read.text;
    its_row.other_value = read.other;
    its_row.latest = context.toolies.shown_number(reply);
    note_extremes(its_row, its_row.latest);
}

// The first value is rounded outward, so that it does not lie on the edge.
void sampling_machine::note_extremes(sample_row& its_row, double value) {
    if (!std::isfinite(value))
        return;
    const auto text = [](double number) { return QString::number(number, 'f', 6); };
    if (its_row.max == QLatin1String("max"))
        its_row.max = text(round_outward(value, true));
    else if (value > its_row.max.toDouble())
        its_row.max = text(value);
    if (its_row.min == QLatin1String("min"))
        its_row.min = text(round_outward(value, false));
    else if (value < its_row.min.toDouble())
        its_row.min = text(value);
}

// --- the sweep -----------------------------------------------------------------------------------------

void sampling_machine::go_on(const QString& data) {
    if (!is_active())
        return; // the view has ended the run
    if (cur_log_idx() == 0)
        run_.cur_log_set.clear();
    else
        run_.cur_log_set += u',';
    run_.cur_log_set += data;
    if (!state.adapter_ready)
        return context.link.set_up_anew(adapter_was_reset);
    const bool was_last = cur_log_idx() >= results.pid_logitems_list.size() - 1;
    if (was_last)
        end_of_sweep(run_.cur_log_set);
    if (is_active())
        ask(was_last ? 0 : cur_log_idx() + 1);
}

void sampling_machine::end_of_sweep(const QString& line) {
    add_item_to_log_vector(results.cur_log_points, QString(), -1);
    ++results.sample_cnt;
    results.times.sweep_complete();
    tell_silence(line);
    host.log().sweep_complete(line);
    results.log_sample_cnt = host.log().sweeps_stored();
    host.observer().sweep_completed();
}

// A time-out tells of itself.
void sampling_machine::tell_silence(const QString& line) {
    const bool is_silent =
        state.timeout_retry_count == 0 &&
        std::all_of(line.begin(), line.end(), [](QChar c) { return c == u'~' || c == u','; });
    if (std::exchange(run_.car_is_silent, is_silent) == is_silent)
        return;
    controller.handleOBDToast(
        is_silent
            ? QStringLiteral("The adapter answers, the car does not.\n\nIs the ignition on? The run goes on, "
                             "and shows values as soon as they come.")
            : QString());
}
