#include "link/exchange.h"

#include "base/anonymity.h"
#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int timeouts_before_giving_up = 4;
constexpr qsizetype most_on_the_way = 8;
constexpr int spells_of_a_stream = 2;
constexpr int longest_silence = 20; // spells
constexpr int search_ms = 40'000;
constexpr int before_next_try_ms = 100;
constexpr qsizetype notice_within = 64; // bytes of a reply

} // namespace

exchange::exchange(const adapter_place& its_place, const adapter_facts& its_adapter, timers& time_source,
                   exchange_owner& its_owner)
    : place(its_place), adapter(its_adapter), clock(time_source), owner(its_owner) {}

void exchange::send(const sent_command& command) {
    cur_cmd = command;
    if (command.why == sent_command::purpose::sets_up)
        warn_no_reply = true;
    if (is_typed() || !is_answer_coming())
        return write();
    in_flight = is_held_back = true;
    start_timer(&exchange::stop_waiting);
}

// What begins an operation or follows a time-out is sent in any case.
bool exchange::is_answer_coming() const {
    return !is_first && timeout_retry_count == 0 &&
           std::any_of(on_the_way.begin(), on_the_way.end(),
                       [this](const sent_command& sent) { return sent.text == cur_cmd.text; });
}

// It was lost for good.
void exchange::stop_waiting() {
    stop_timer();
    on_the_way.clear();
    write();
}

void exchange::take_as_unknown(const sent_command& command) {
    const reply unknown = taken_apart(QStringLiteral("?"));
    cur_cmd = command;
    stop_timer();
    hand_on(work_a_rcvdOBD_cmd(unknown, cur_cmd, 0).result == reply_accepted ? unknown : reply::none());
}

void exchange::write() {
    const QByteArray bytes = cur_cmd.text.toUtf8();
    note_command({}); // the command itself tells nothing
    console_log_utf8({" >>>>>>>>>Sending[", bytes, "]"});
    note_command(bytes);
    rx_accum.clear(); // text that came before the command cannot answer it
    in_flight = true;
    has_text = false;
    spells_of_text = spells_of_silence = 0;
    is_first = is_held_back = is_searching = false;
    if (on_the_way.size() >= most_on_the_way)
        on_the_way.removeFirst();
    on_the_way += cur_cmd;
    start_timer(&exchange::obdTimedOutHandler); // before writing: a simulated reply arrives inside the write
    its_moments = {clock.microseconds(), 0, 0, 0};
    owner.transmit(bytes);
    if (its_moments.first_byte == 0)
        its_moments.asked = clock.microseconds();
}

void exchange::start_timer(void (exchange::*then)()) {
    stop_timer();
    obdTimeOutTimer = clock.one_shot(cur_cmd.seconds * 1000, [this, then] { (this->*then)(); });
}

// A search for the protocol takes up to half a minute, and sending again would stop it and begin another.
void exchange::wait_for_the_search() {
    const QByteArrayView held = rx_accum.text();
    const QByteArrayView begun = held.first(std::min(held.size(), notice_within));
    if (is_searching || !in_flight || is_held_back || !obdTimeOutTimer ||
        (begun.indexOf("SEARCHING") < 0 && begun.indexOf("BUS INIT") < 0))
        return;
    is_searching = true;
    owner.show_status(QStringLiteral("The adapter is looking for the car's protocol. This takes up to %1 s")
                          .arg(search_ms / 1000));
    stop_timer();
    obdTimeOutTimer = clock.one_shot(search_ms, [this] { obdTimedOutHandler(); });
}

void exchange::abandon() {
    stop_timer();
    in_flight = is_held_back = false;
    is_first = true;
    timeout_retry_count = no_confirm_count = 0;
}

void exchange::reset() {
    abandon();
    rx_accum.clear();
    rx_reply.clear();
    cur_cmd = {};
    on_the_way.clear();
}

// The reply up to the first prompt; what follows it, up to the next prompt, stays in the buffer.
QString exchange::cut_reply(QByteArrayView bytes, qsizetype prompt) {
    rx_accum.append(bytes.first(prompt + 1));
    rx_reply = rx_accum;
    rx_accum.clear();

    const QByteArrayView rest = bytes.sliced(prompt + 1);
    const qsizetype next_prompt = rest.indexOf('>');
    rx_accum.append(next_prompt < 0 ? rest : rest.first(next_prompt));
    return QString::fromUtf8(rx_reply.text());
}

void exchange::handleOBDRcvdNotification(const QString& text) {
    its_moments.last_byte = clock.microseconds();
    if (its_moments.first_byte == 0)
        its_moments.first_byte = its_moments.last_byte;
    const QByteArray bytes = text.toUtf8();
    its_moments.bytes += bytes.size();
    console_log_utf8({"delegate:handleOBDRcvd<<<<<<<<< [", bytes, "]"});
    QByteArrayView rest = bytes;
    for (;;) {
        const qsizetype prompt = rest.indexOf('>');
        if (is_typed())
            owner.piece_arrived(QString::fromUtf8(prompt < 0 ? rest : rest.first(prompt)));
        has_text = true;
        if (prompt < 0) {
            rx_accum.append(rest);
            return wait_for_the_search();
        }
        const bool looks_on = take_reply(rest, prompt);
        rest = rest.sliced(prompt + 1);
        if (!looks_on) // what else came at once was sent before the next command
            return drop_earlier(std::count(rest.begin(), rest.end(), '>'));
        rx_accum.clear();
        its_moments.first_byte = its_moments.bytes = 0; // they were those of a late reply
    }
}

reply exchange::taken_apart(const QString& text) const {
    return reply({text, adapter.cur_protocol(), adapter.headers_shown()});
}

// Works on the text up to the prompt. True when the next reply is the one to look at: this was a late one, or
// the next command waits for one that is on its way.
bool exchange::take_reply(QByteArrayView bytes, qsizetype prompt) {
    stop_timer();
    is_held_back = false;
    const int timeouts_before = std::exchange(timeout_retry_count, 0);
    const QString raw = cut_reply(bytes, prompt);
    if (!in_flight && !is_typed()) { // its operation is over
        const reply what_came = taken_apart(prepReply(raw));
        if (tells_a_reset(what_came.text(), on_the_way))
            owner.adapter_started_anew();
        settle(what_came);
        return true;
    }

    const bool is_cut = rx_reply.is_cut();
    if (is_cut)
        console_log(QStringLiteral("handleOBDRcvdNotification: reply longer than %1 bytes, not decoded")
                        .arg(rx_buffer::limit));
    // A reply that was cut is never decoded: what follows sees an empty one.
    const bool is_late = check_reply(taken_apart(is_cut ? QString() : prepReply(raw)), raw);
    if (is_late)
        timeout_retry_count = timeouts_before; // what is being asked for has not been answered
    return is_late || is_held_back;
}

// True when the reply is a late one to an earlier try, so that the next prompt is the one to wait for.
bool exchange::check_reply(const reply& what_came, const QString& raw) {
    switch (check_initial_car_reply(what_came.text())) {
    case car_reply::no_reply_from_car:
        owner.show_status(localised(QStringLiteral("no_reply_from_car_MSG")));
        owner.pop_a_messy(localised(QStringLiteral("no_reply_from_car_MSG")), QString());
        return owner.reply_refused(), false;
    case car_reply::init_error:
        owner.pop_a_messy(localised(QStringLiteral("init_OBD_error_MSG")), QString());
        return owner.reply_refused(), false;
    case car_reply::accepted: break;
    }
    if (tells_a_reset(what_came.text(), on_the_way))
        owner.adapter_started_anew();
    const bool may_be_late = earlier_ones() > 0;
    const bool is_anothers = settle(what_came);
    if (is_typed() || cur_cmd.text.isEmpty())
        return hand_on(what_came), false;
    if (is_anothers && cur_cmd.why == sent_command::purpose::on_its_own) {
        start_timer(&exchange::obdTimedOutHandler); // any answer counts, but none to something else
        return true;
    }

    // Some commands take any answer, an empty one too, but none that was cut.
    const reply_verdict verdict = rx_reply.is_cut()
                                      ? unconfirmed(no_confirm_count)
                                      : work_a_rcvdOBD_cmd(what_came, cur_cmd, no_confirm_count);
    if (verdict.result != reply_accepted && may_be_late) {
        // Sending once more would leave the exchange one reply behind for good.
        start_timer(&exchange::obdTimedOutHandler);
        return true;
    }
    no_confirm_count = verdict.no_confirm_count;
    switch (verdict.result) {
    case reply_accepted: hand_on(what_came); break;
    case reply_retry:
        owner.show_status(QStringLiteral("Didn't get a confirmation from interface ... Trying again"));
        rx_accum.clear();
        obdTimeOutTimer = clock.one_shot(before_next_try_ms, [this] { write(); });
        break;
    default:
        if (warn_no_reply && !cur_cmd.is_a_trial && !raw.contains(QLatin1Char('?')))
            owner.pop_a_messy(why_given_up(what_came));
        warn_no_reply = warn_no_reply && cur_cmd.is_a_trial;
        hand_on(reply::none(what_came.raw()));
    }
    return false;
}

// Adapters answer in order: what was written before the command that this answers is not answered any more. A
// reply that answers several is taken for the first one's, and so is one that answers none. True when it
// answers one that was written before the command in flight, and says other than that.
bool exchange::settle(const reply& what_came) {
    const auto answered = [&](const sent_command& sent) {
        return work_a_rcvdOBD_cmd(what_came, sent, 0).result == reply_accepted;
    };
    qsizetype settled = 1;
    bool is_anothers = false;
    if (on_the_way.size() > 1) {
        const auto first = std::find_if(on_the_way.cbegin(), on_the_way.cend(), answered);
        settled = first == on_the_way.cend() ? 1 : first - on_the_way.cbegin() + 1;
        is_anothers = first != on_the_way.cend() && first->text != cur_cmd.text && !what_came.no_data();
    }
    on_the_way.remove(0, std::min(settled, on_the_way.size()));
    return is_anothers;
}

void exchange::drop_earlier(qsizetype prompts) {
    on_the_way.remove(0, std::min(prompts, std::max<qsizetype>(0, earlier_ones())));
}

void exchange::hand_on(const reply& what_came) {
    in_flight = false;
    owner.reply_arrived(what_came);
}

// Some commands are answered without an end, until the person stops it.
bool exchange::is_streaming() {
    if (std::exchange(has_text, false)) {
        ++spells_of_text;
        spells_of_silence = 0;
        return true;
    }
    return spells_of_text >= spells_of_a_stream && ++spells_of_silence < longest_silence;
}

void exchange::obdTimedOutHandler() {
    stop_timer();
    if (is_typed() && is_streaming())
        return start_timer(&exchange::obdTimedOutHandler);
    console_log(QStringLiteral("Timed out handler here"));
    if (is_typed())
        owner.piece_arrived(QStringLiteral("\r"));
    if (timeout_retry_count >= timeouts_before_giving_up) {
        timeout_retry_count = 0;
        return owner.command_unanswered();
    }
    ++timeout_retry_count;
    owner.show_status(fill(QStringLiteral("OBD Cmd: (%s:%s) Timed out!! \n    Retrying...%d/4"),
                           {place.wifi_ip(), place.wifi_port(), QString::number(timeout_retry_count)}));
    if (cur_cmd.is_asked_again)
        return write();
    hand_on(reply::none());
}

} // namespace brivant
