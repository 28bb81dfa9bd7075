#pragma once

#include "base/adapter_facts.h"
#include "base/rx_buffer.h"
#include "base/timers.h"
#include "link/adapter_place.h"
#include "link/reply_check.h"

namespace brivant {

// What the exchange asks of its owner.
class exchange_owner {
public:
    virtual ~exchange_owner() = default;
    virtual void transmit(const QByteArray& command) = 0;
    virtual void show_status(const QString& status) = 0;
    virtual void pop_a_messy(const QString& text, const QString& title = QString()) = 0;
    // The adapter's words say that the operation cannot go on.
    virtual void reply_refused() = 0;
    // Text that answers a command typed by hand, as it comes; its reply_arrived() follows. After a time-out
    // the line is ended.
    virtual void piece_arrived(const QString& text) = 0;
    // A reply to the command in flight, or "~".
    virtual void reply_arrived(const reply& what_came) = 0;
    // No prompt came in time, five times.
    virtual void command_unanswered() = 0;
    // The adapter says that it has been reset, and not by this program: its settings are gone.
    virtual void adapter_started_anew() = 0;
};

// When a command was asked and answered, in microseconds of timers::microseconds(). A value is true in the
// middle between the last byte of its request and the first byte of its reply.
struct exchange_moments {
    qint64 asked = 0;      // its last byte went out
    qint64 first_byte = 0; // of the reply; 0 while none came
    qint64 last_byte = 0;
    qsizetype bytes = 0; // of the reply, as they came
    qint64 middle() const { return first_byte == 0 ? asked : asked + (first_byte - asked) / 2; }
};

// The command in flight: sent, timed, its reply cut at ">", normalised, checked, asked again or given up. At
// most one command waits for a reply at any time; only its reply is handed on. Its
// owner, and what it reads, live as long as it does.
class exchange {
public:
    exchange(const adapter_place& its_place, const adapter_facts& its_adapter, timers& time_source,
             exchange_owner& its_owner);

    // While an earlier try of the same command is still on its way, its reply is waited for instead: nothing
    // would tell it from the reply to this one, and the exchange would stay one reply behind.
    void send(const sent_command& command);
    // As if the command had been sent and the adapter did not know it ("?"), without a byte on the link.
    void take_as_unknown(const sent_command& command);

    // Text from the adapter, in pieces of any size.
    void handleOBDRcvdNotification(const QString& text);

    void stop_timer() { obdTimeOutTimer.reset(); }
    // No reply is awaited any more; one that still comes is dropped.
    void abandon();
    // A fresh or a closed link: nothing sent, nothing received.
    void reset();

    bool is_in_flight() const { return in_flight; }
    // The command in flight is answered, and not to the end.
    bool is_being_answered() const { return in_flight && !rx_accum.is_empty(); }
    // Time-outs since the last reply.
    int timeouts() const { return timeout_retry_count; }
    // Whether the next command that is given up on is told in a box: once, until something is set up again.
    void warn_no_more() { warn_no_reply = false; }
    // A reply to an earlier command may still come.
    bool is_late_reply_due() const { return earlier_ones() > 0; }
    // It has not come in time, and is not waited for any more.
    void forget_late_replies() { drop_earlier(on_the_way.size()); }
    const sent_command& current_command() const { return cur_cmd; }
    // Those of the command in flight, or of the last one.
    const exchange_moments& moments() const { return its_moments; }

private:
    void write();
    void start_timer(void (exchange::*then)());
    void wait_for_the_search();
    void obdTimedOutHandler();
    bool is_streaming();
    bool take_reply(QByteArrayView bytes, qsizetype prompt);
    QString cut_reply(QByteArrayView bytes, qsizetype prompt);
    reply taken_apart(const QString& text) const;
    bool check_reply(const reply& what_came, const QString& raw);
    bool settle(const reply& what_came);
    qsizetype earlier_ones() const { return on_the_way.size() - (in_flight && !is_held_back ? 1 : 0); }
    void drop_earlier(qsizetype prompts);
    bool is_answer_coming() const;
    bool is_typed() const { return cur_cmd.why == sent_command::purpose::typed; }
    void stop_waiting();
    void hand_on(const reply& what_came);

    const adapter_place& place;
    const adapter_facts& adapter;
    timers& clock;
    exchange_owner& owner;

    sent_command cur_cmd;
    exchange_moments its_moments;
    timer_handle obdTimeOutTimer;
    rx_buffer rx_accum;          // bytes received since the last complete reply
    rx_buffer rx_reply;          // the complete reply just cut from rx_accum
    int timeout_retry_count = 0; // time-outs since the last reply
    int no_confirm_count = 0;    // replies in a row that did not answer the command
    bool warn_no_reply = true;
    bool in_flight = false;
    bool is_searching = false; // the adapter looks for the car's protocol before it asks
    bool is_first = true;      // no command was written since the operation before
    bool has_text = false;     // since the timer was started
    int spells_of_text = 0;    // how often the timer ran out behind some
    int spells_of_silence = 0; // and behind none, since
    bool is_held_back = false; // the command in flight is not written: an earlier one will answer it

    // What was written and may still be answered, in order, the command in flight last. Others stand before
    // it after a time-out or a stop: their replies come first.
    QList<sent_command> on_the_way;
};

} // namespace brivant
