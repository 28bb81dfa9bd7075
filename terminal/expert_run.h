#pragma once

#include "expert/expertCtrlr.h"
#include "terminal/car_run.h"

namespace brivant {

// The commands "send" and "script": raw commands and their raw answers, each answer printed as it comes. With
// a single command to send only the answer is printed, otherwise a line "> COMMAND" above each.
class expert_run : public car_run {
public:
    explicit expert_run(program_core& its_core);
    ~expert_run() override { leave(); }

    void start() override;

    static bool is_expert_command(const QString& command);
    // Why the words after the command cannot be carried out, "" when they can.
    static QString wrong_words(const QString& command, const QStringList& words, bool yes);

private:
    void begin_next();
    void print_new_lines();
    void print_answers(bool done);

    QStringList waiting; // commands
    expertCtrlr controller;
    qint64 printed = 0; // the lines of the transcript up to this one
    bool commands_too = false;
};

} // namespace brivant
