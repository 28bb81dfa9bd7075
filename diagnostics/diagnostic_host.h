#pragma once

#include "base/process_state.h"
#include "diagnostics/diagnostic_results.h"
#include "link/adapter_link.h"

// How the adapter shows its replies now.
inline reply_form form_of(const process_state& state) {
    return {state.cur_protocol, state.headers_shown};
}

// The reply as it came. One that was given up on, because its first ECU refuses, may hold another's answer.
inline QString reply_to_keep(const QString& reply, const adapter_link& link) {
    return reply == no_reply && !link.last_raw_reply().isEmpty() ? link.last_raw_reply() : reply;
}

// Why an operation failed to which the adapter passed on no answer at all.
inline const QString no_ecu_answers =
    QStringLiteral("the adapter answers, but no ECU of the car does: switch the ignition on and read again");

// What the step machines of the diagnostics screen ask of their controller.
class diagnostic_host : public task_controller {
public:
    // When the adapter has not been initialised on this link: starts the initialisation, which comes back to
    // the current operation at step 0, and gives true.
    virtual bool connect_first() = 0;
    // The operation has reached its end.
    virtual void task_done() = 0;
    // The adapter was told to wait as long as it can ("AT ST FF"). That stays in force until it is reset, and
    // makes everything slow, so the next operation starts from a reset.
    virtual void adapter_slowed() = 0;
    virtual void load_the_codes() = 0;
    // While logging is on: writes the text to the session file; writes and stores the operation's report.
    virtual void append_to_log(const QString& text) = 0;
    virtual void write_report() = 0;
    // The date of a heading.
    virtual QString todays_date() const = 0;
    virtual diagnostic_results& results() = 0;
};
