#pragma once

#include "base/process_state.h"
#include "base/timers.h"
#include "link/reply_check.h"

// What the exchange asks of its owner.
class exchange_owner {
public:
    virtual ~exchange_owner() = default;
    virtual void transmit(const QByteArray& command) = 0;
    virtual void show_status(const QString& status) = 0;
    virtual void pop_a_messy(const QString& text, const QString& title) = 0;
    // The adapter's words say that the operation cannot go on.
    virtual void reply_refused() = 0;
    // A reply to the command in flight, or "~".
    virtual void reply_arrived(const QString& reply) = 0;
    // No prompt came in time: the current step is to be redone.
    virtual void redo_current_step() = 0;
    // It did not come in time five times.
    virtual void command_unanswered() = 0;
    // The adapter says that it has been reset, and not by this program: its settings are gone.
    virtual void adapter_started_anew() = 0;
};

// The command in flight: sent, timed, its reply cut at ">", normalised, checked, asked again or given up. At
// most one command waits for a reply at any time; only its reply is handed on. Lives as long as its owner and
// the process state it works on.
class exchange {
public:
    exchange(process_state& process, timers& time_source, exchange_owner& its_owner);

    // Sends a command ("01 00\r") that may carry its own time-out in seconds ("01 00|12.0\r"; 3 without one).
    // `expectedReply`: alternatives separated by "|", or null for a reply that is checked by message.
    // While an earlier try of the same command is still on its way, its reply is waited for instead: nothing
    // would tell it from the reply to this one, and the exchange would stay one reply behind.
    void sendOBDcmd_n(const QString& command, const QString& expectedReply, bool msg_has_hdr);
    // Sends the text as it is, under the time-out in force; the expert console's way, and how a command is
    // sent again.
    void sendOBDcmd(const QString& command);
    void send_again() { sendOBDcmd(cur_cmd); }
    // As if the command had been sent and the adapter did not know it ("?"), without a byte on the link.
    void take_as_unknown(const QString& command, const QString& expectedReply);

    // Text from the adapter, in pieces of any size.
    void handleOBDRcvdNotification(const QString& text);

    void stop_timer() { obdTimeOutTimer.reset(); }
    // No reply is awaited any more; one that still comes is dropped.
    void abandon();
    // A fresh or a closed link: nothing sent, nothing received.
    void reset();

    bool is_in_flight() const { return in_flight; }
    // A reply to an earlier command may still come.
    bool is_late_reply_due() const { return earlier_ones() > 0; }
    // It has not come in time, and is not waited for any more.
    void forget_late_replies() { drop_earlier(on_the_way.size()); }
    const QString& current_command() const { return cur_cmd; }
    // What stands behind a "~" that was handed on: the last reply to the command, which does not confirm it.
    // "" when none came. Valid until the next command.
    const QString& last_raw_reply() const { return given_up; }

private:
    reply taken_apart(const QString& text) const;
    void keep_command(const QString& command, const QString& expectedReply, bool msg_has_hdr);
    void keep_typed(const QString& command);
    void obdTimedOutHandler();
    bool take_reply(QByteArrayView bytes, qsizetype prompt);
    QString cut_reply(QByteArrayView bytes, qsizetype prompt);
    bool check_reply(const QString& reply, const QString& raw);
    void settle(const QString& reply);
    qsizetype earlier_ones() const { return on_the_way.size() - (in_flight && !is_held_back ? 1 : 0); }
    void drop_earlier(qsizetype prompts);
    bool is_answer_coming() const;
    void stop_waiting();
    void hand_on(const QString& reply);
    sent_command in_force() const { return {cur_cmd, cur_expectedReply, cur_reply_has_hdr}; }

    process_state& state;
    timers& clock;
    exchange_owner& owner;

    QString cur_cmd;
    QString cur_expectedReply;
    QString given_up;
    bool cur_reply_has_hdr = false;
    timer_handle obdTimeOutTimer;
    bool in_flight = false;
    bool is_first = true;      // no command was written since the operation before
    bool is_held_back = false; // the command in flight is not written: an earlier one will answer it

    // What was written and may still be answered, in order, the command in flight last. Others stand before
    // it after a time-out or a stop: their replies come first.
    QList<sent_command> on_the_way;
};
