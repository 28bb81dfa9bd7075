#pragma once

#include "obd/reply.h"

// Whether a reply answers the command it was sent for.

constexpr int reply_accepted = 671;
constexpr int reply_given_up = 672;
constexpr int reply_retry = 673;

struct sent_command {
    QString text;          // with its "\r"
    QString expectedReply; // alternatives separated by "|"; null: checked by message, with headers only
    bool has_header = false;
};

struct reply_verdict {
    int result = reply_retry;
    int no_confirm_count = 0; // the new count of consecutive unconfirmed replies
    obd_messages obd_msgs;    // the reply by ECU, when it was checked by message
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

// Which of adapter, car and the line between them a reply without an answer blames, a sentence; "" when it
// says nothing about it.
QString where_it_failed(const QString& reply);

// The adapter's error words.
enum class car_reply { accepted, no_reply_from_car, init_error };
car_reply check_initial_car_reply(const QString& reply);
