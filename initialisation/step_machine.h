#pragma once

#include "initialisation/operation_context.h"

#include <stdexcept>

// One reply-driven operation. Each call of run() works on the reply to the command sent before, by the step
// in `cur_step`, and sends the next command with the step that handles its reply. A failure inside a step is
// shown and ends the operation.
class step_machine {
public:
    step_machine(operation_context& its_context, task_controller& its_controller)
        : context(its_context), state(its_context.state), controller(its_controller) {}
    virtual ~step_machine() = default;

    void run(const QString& reply);

protected:
    virtual void work_step(int step, const QString& reply) = 0;
    // The failure text, with one place for the reason.
    virtual QString failure_text() const = 0;
    virtual bool failure_has_box() const { return true; }

    // Sends a command whose reply is handled by step `next`. Commands are written without their "\r".
    void send(int next, const QString& command, const QString& expected);
    // The same for a request whose reply is checked by message, headers shown.
    void send_with_headers(int next, const QString& command, const QString& expected = QString());

    // The same for a request whose reply is read with headers or without, as the adapter shows them now.
    void ask(int next, const QString& command);

    void show(const QString& status) { controller.set_status_msg(status); }
    void leave(const QString& status = QStringLiteral("")) { controller.leave_cur_op_gracefully(status); }

    operation_context& context;
    process_state& state;
    task_controller& controller;
};

// What a step throws when it cannot go on: the reason is shown to the person.
class step_failure : public std::runtime_error {
public:
    explicit step_failure(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

// Why an operation over an adapter that is no longer set up is left.
inline const QString adapter_was_reset =
    QStringLiteral("The adapter has reset itself, as it does when its voltage drops. Start again (F5)");

// True for the reply "~", no data, or a "?" without any data: nothing that could be decoded.
bool has_no_data(const QString& reply);
