#include "link/exchange.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace {

constexpr int default_timeout_secs = 3;
constexpr int longest_timeout_secs = 600;
constexpr int timeouts_before_giving_up = 4;
constexpr qsizetype most_on_the_way = 8;

// The whole seconds of a time-out suffix; 3 for one that is no positive number.
int seconds_of_suffix(const QString& suffix) {
    bool ok = false;
    const double seconds = suffix.trimmed().toDouble(&ok);
    return ok && seconds >= 1 && seconds <= longest_timeout_secs ? static_cast<int>(seconds)
                                                                 : default_timeout_secs;
}

} // namespace

exchange::exchange(process_state& process, timers& time_source, exchange_owner& its_owner)
    : state(process), clock(time_source), owner(its_owner) {}

reply exchange::taken_apart(const QString& text) const {
    return reply({text, state.cur_protocol, state.headers_shown});
}

void exchange::sendOBDcmd_n(const QString& command, const QString& expectedReply, bool msg_has_hdr) {
    keep_command(command, expectedReply, msg_has_hdr);
    if (!is_answer_coming())
        return sendOBDcmd(QString(cur_cmd));
    in_flight = is_held_back = true;
    obdTimeOutTimer = clock.one_shot(state.cmd_timeout_secs * 1000, [this] { stop_waiting(); });
}

// What begins an operation or is redone after a time-out is sent in any case.
bool exchange::is_answer_coming() const {
    return !is_first && state.timeout_retry_count == 0 &&
           std::any_of(on_the_way.begin(), on_the_way.end(),
                       [this](const sent_command& sent) { return sent.text == cur_cmd; });
}

// It was lost for good.
void exchange::stop_waiting() {
    stop_timer();
    on_the_way.clear();
    sendOBDcmd(QString(cur_cmd));
}

void exchange::keep_command(const QString& command, const QString& expectedReply, bool msg_has_hdr) {
    cur_expectedReply = expectedReply;
    given_up.clear();
    cur_reply_has_hdr = msg_has_hdr;
    state.cmd_timeout_secs = default_timeout_secs;
    const qsizetype bar = command.indexOf(QLatin1Char('|'));
    if (bar < 0) {
        cur_cmd = command;
    } else {
        cur_cmd = command.first(bar) + QLatin1Char('\r');
        state.cmd_timeout_secs = seconds_of_suffix(command.sliced(bar + 1));
    }
}

// Every reply is passed on; what is expected only tells which command it answers.
void exchange::keep_typed(const QString& command) {
    cur_cmd = command;
    cur_expectedReply = positive_reply_of(command);
    cur_reply_has_hdr = false;
}

void exchange::take_as_unknown(const QString& command, const QString& expectedReply) {
    const QString unknown = QStringLiteral("?");
    keep_command(command, expectedReply, false);
    stop_timer();
    state.obd_msgs.clear();
    const reply_verdict verdict = work_a_rcvdOBD_cmd(taken_apart(unknown), in_force(), 0);
    hand_on(verdict.result == reply_accepted ? unknown : no_reply);
}

void exchange::sendOBDcmd(const QString& command) {
    const QByteArray bytes = command.toUtf8();
    console_log_utf8({" >>>>>>>>>Sending[", bytes, "]"});
    if (state.cur_op == op_expert) {
        keep_typed(command);
        // Whatever was sent may have changed the adapter: the next operation starts from a reset.
        state.adapter_ready = false;
        state.adapter_known = false;
    }
    state.rx_accum.clear(); // text that came before the command cannot answer it
    in_flight = true;
    is_first = is_held_back = false;
    if (on_the_way.size() >= most_on_the_way)
        on_the_way.removeFirst();
    on_the_way += in_force();
    // Armed before writing: a simulated reply arrives inside the write.
    obdTimeOutTimer = clock.one_shot(state.cmd_timeout_secs * 1000, [this] { obdTimedOutHandler(); });
    owner.transmit(bytes);
}

void exchange::abandon() {
    stop_timer();
    in_flight = is_held_back = false;
    is_first = true;
    state.timeout_retry_count = 0;
}

void exchange::reset() {
    abandon();
    state.rx_accum.clear();
    state.rx_reply.clear();
    cur_cmd.clear();
    on_the_way.clear();
}

// The reply up to the first prompt; what follows it, up to the next prompt, stays in the buffer.
QString exchange::cut_reply(QByteArrayView bytes, qsizetype prompt) {
    state.rx_accum.append(bytes.first(prompt + 1));
    state.rx_reply = state.rx_accum;
    state.rx_accum.clear();

    const QByteArrayView rest = bytes.sliced(prompt + 1);
    const qsizetype next_prompt = rest.indexOf('>');
    state.rx_accum.append(next_prompt < 0 ? rest : rest.first(next_prompt));
    return QString::fromUtf8(state.rx_reply.text());
}

void exchange::handleOBDRcvdNotification(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    console_log_utf8({"delegate:handleOBDRcvd<<<<<<<<< [", bytes, "]"});
    QByteArrayView rest = bytes;
    for (;;) {
        const qsizetype prompt = rest.indexOf('>');
        if (prompt < 0)
            return state.rx_accum.append(rest);
        const bool looks_on = take_reply(rest, prompt);
        rest = rest.sliced(prompt + 1);
        if (!looks_on) // what else came at once was sent before the next command
            return drop_earlier(std::count(rest.begin(), rest.end(), '>'));
        state.rx_accum.clear();
    }
}

// Works on the text up to the prompt. True when the next reply is the one to look at: this was a late one, or
// the next command waits for one that is on its way.
bool exchange::take_reply(QByteArrayView bytes, qsizetype prompt) {
    stop_timer();
    is_held_back = false;
    const int timeouts = std::exchange(state.timeout_retry_count, 0);
    const QString raw = cut_reply(bytes, prompt);
    if (!in_flight && state.cur_op != op_expert) { // its operation is over
        const QString reply = prepReply(raw);
        if (tells_a_reset(reply, on_the_way))
            owner.adapter_started_anew();
        settle(reply);
        return true;
    }

    const bool is_cut = state.rx_reply.is_cut();
    if (is_cut)
        console_log(QStringLiteral("handleOBDRcvdNotification: reply longer than %1 bytes, not decoded")
                        .arg(rx_buffer::limit));
    // A reply that was cut is never decoded: what follows sees an empty one.
    const bool is_late = check_reply(is_cut ? QString() : prepReply(raw), raw);
    if (is_late)
        state.timeout_retry_count = timeouts; // what is being asked for has not been answered
    return is_late || is_held_back;
}

// True when the reply is a late one to an earlier try, so that the next prompt is the one to wait for.
bool exchange::check_reply(const QString& reply, const QString& raw) {
    switch (check_initial_car_reply(reply)) {
    case car_reply::no_reply_from_car:
        owner.show_status(localised(QStringLiteral("no_reply_from_car_MSG")));
        owner.pop_a_messy(localised(QStringLiteral("no_reply_from_car_MSG")), QString());
        return owner.reply_refused(), false;
    case car_reply::init_error:
        owner.pop_a_messy(localised(QStringLiteral("init_OBD_error_MSG")), QString());
        return owner.reply_refused(), false;
    case car_reply::accepted: break;
    }
    if (tells_a_reset(reply, on_the_way))
        owner.adapter_started_anew();
    const bool may_be_late = earlier_ones() > 0;
    settle(reply);
    if (state.cur_op == op_expert || cur_cmd.isEmpty())
        return hand_on(reply), false;

    // Some commands take any answer, an empty one too, but none that was cut.
    reply_verdict verdict = state.rx_reply.is_cut()
                                ? unconfirmed(state.no_confirm_count)
                                : work_a_rcvdOBD_cmd(taken_apart(reply), in_force(), state.no_confirm_count);
    state.obd_msgs = std::move(verdict.obd_msgs);
    if (verdict.result == reply_retry && may_be_late) {
        // Sending once more would leave the exchange one reply behind for good.
        obdTimeOutTimer = clock.one_shot(state.cmd_timeout_secs * 1000, [this] { obdTimedOutHandler(); });
        return true;
    }
    state.no_confirm_count = verdict.no_confirm_count;
    switch (verdict.result) {
    case reply_accepted: hand_on(reply); break;
    case reply_retry:
        owner.show_status(QStringLiteral("Didn't get a confirmation from interface ... Trying again"));
        send_again();
        break;
    default:
        if (state.warn_no_reply != -1 && !raw.contains(QLatin1Char('?')))
            owner.pop_a_messy(QStringLiteral("Retried 3 times and Did not get a reply from interface.  "
                                             "Check pairing/connections"),
                              where_it_failed(reply));
        state.warn_no_reply = -1;
        given_up = reply;
        hand_on(no_reply);
    }
    return false;
}

// Adapters answer in order: what was written before the command that this answers is not answered any more. A
// reply that answers several is taken for the first one's, and so is one that answers none.
void exchange::settle(const QString& reply) {
    const ::reply what_came = taken_apart(reply);
    const auto answered = [&](const sent_command& sent) {
        return work_a_rcvdOBD_cmd(what_came, sent, 0).result == reply_accepted;
    };
    qsizetype settled = 1;
    if (on_the_way.size() > 1) {
        const auto first = std::find_if(on_the_way.cbegin(), on_the_way.cend(), answered);
        settled = first == on_the_way.cend() ? 1 : first - on_the_way.cbegin() + 1;
    }
    on_the_way.remove(0, std::min(settled, on_the_way.size()));
}

void exchange::drop_earlier(qsizetype prompts) {
    on_the_way.remove(0, std::min(prompts, std::max<qsizetype>(0, earlier_ones())));
}

void exchange::hand_on(const QString& reply) {
    in_flight = false;
    owner.reply_arrived(reply);
}

void exchange::obdTimedOutHandler() {
    console_log(QStringLiteral("Timed out handler here"));
    stop_timer();
    if (state.timeout_retry_count >= timeouts_before_giving_up) {
        state.timeout_retry_count = 0;
        return owner.command_unanswered();
    }
    ++state.timeout_retry_count;
    owner.show_status(fill(QStringLiteral("OBD Cmd: (%s:%s) Timed out!! \n    Retrying...%d/4"),
                           {state.wifi_ip, state.wifi_port, QString::number(state.timeout_retry_count)}));
    owner.redo_current_step();
}
