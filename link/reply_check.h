#pragma once

#include "obd/reply.h"

namespace brivant {

// Whether a reply answers the command it was sent for.

constexpr int reply_accepted = 671;
constexpr int reply_given_up = 672;
constexpr int reply_retry = 673;

// A command, what its reply is checked against, and what becomes of it when none comes in time.
struct sent_command {
    QString text{};          // with its "\r"
    QString expectedReply{}; // alternatives separated by "|"; null: checked by message, with headers only
    bool has_header = false;
    int seconds = 3;            // until the time-out
    bool is_asked_again = true; // after a time-out, four times; else its answer is "~" at once
    bool is_sent_once = false;  // a reply that does not answer it is given up on at once
    bool is_a_trial = false;    // that it is given up on is no news for the person
    enum class purpose {
        ordinary,   // counts on the adapter as it was set up
        sets_up,    // is part of that
        on_its_own, // its reply counts, whatever has become of the adapter
        typed,      // by hand: every reply is passed on unchecked
    } why = purpose::ordinary;

    bool operator==(const sent_command&) const = default;
};

// A command as it is noted: "01 00\r", or with its own time-out in seconds "01 00|12.0\r"; one that is no
// number of seconds leaves the usual one.
sent_command command_of(const QString& command, const QString& expectedReply, bool msg_has_hdr);
// A command as it was typed, with its "\r". What is expected only tells which command a reply answers.
sent_command as_typed(const QString& command);

struct reply_verdict {
    int result = reply_retry;
    int no_confirm_count = 0; // the new count of consecutive unconfirmed replies
};

// A command is tried three times more after its first unconfirmed reply; the fourth gives up.
reply_verdict work_a_rcvdOBD_cmd(const reply& what_came, const sent_command& command, int no_confirm_count);
// The verdict on a reply that is no answer whatever it says: asked again, or given up on.
reply_verdict unconfirmed(int no_confirm_count);

// The pattern of a positive reply to a request that is asked without headers: the service plus 40 (hex), then
// the PID, or for service 22 the identifier ("02 0C 00" gives "420C", "22 10 2A" gives "62102A", "04" gives
// "44"). An AT command gives "OK".
QString positive_reply_of(const QString& command);

// Whether the reply is the adapter's greeting after a loss of its supply, or tells of one ("LV RESET").
// `unanswered`: the commands that it may answer; some ask for the greeting.
bool tells_a_reset(const QString& reply, const QList<sent_command>& unanswered);

// What a reply that was given up on says of adapter, car and the line between them, a sentence.
QString why_given_up(const reply& what_came);

// The adapter's error words.
enum class car_reply { accepted, no_reply_from_car, init_error };
car_reply check_initial_car_reply(const QString& reply);

} // namespace brivant
