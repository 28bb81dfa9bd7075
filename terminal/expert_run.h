#pragma once

#include "expert/expertCtrlr.h"
#include "shell/Bv_lite_delegate.h"
#include "shell/program_core.h"
#include "terminal/cli_screen.h"
#include "terminal/stop_signals.h"

// The commands "send" and "script": raw commands and their raw answers, each answer printed as it comes. With
// a single command to send only the answer is printed, otherwise a line "> COMMAND" above each.
class expert_run : public QObject {
    Q_OBJECT

public:
    explicit expert_run(program_core& its_core);
    ~expert_run() override;

    void start();

    static bool is_expert_command(const QString& command);
    // Why the words after the command cannot be carried out, "" when they can.
    static QString wrong_words(const QString& command, const QStringList& words, bool yes);

Q_SIGNALS:
    // 0 everything was answered, 1 something was not, or it was stopped.
    void finished(int exit_status);

private:
    // A terminal that prints the transcript.
    class console_screen : public cli_screen {
    public:
        console_screen(bool always_yes, std::function<void()> its_lines_came)
            : cli_screen(always_yes), lines_came(std::move(its_lines_came)) {}
        void reload(const QString& list) override;

    private:
        std::function<void()> lines_came;
    };

    void begin_next();
    void print_new_lines();
    void print_json(bool done);

    program_core& core;
    QStringList waiting; // commands
    console_screen view;
    Bv_lite_delegate delegate;
    mac_toolies toolies;
    expertCtrlr controller;
    std::unique_ptr<stop_signals> signals_;
    timer_handle going_on;
    qint64 printed = 0; // the lines of the transcript up to this one
    bool commands_too = false;
    bool output_lost = false;
};
