#pragma once

#include "shell/Bv_lite_delegate.h"
#include "shell/program_core.h"
#include "terminal/cli_screen.h"
#include "terminal/commands.h"
#include "terminal/stop_signals.h"

// One command of the terminal program, from the start of the operation to its result on standard output.
class cli_run : public QObject {
    Q_OBJECT

public:
    cli_run(program_core& its_core, const cli_command& its_command);
    ~cli_run() override;

    void start();

Q_SIGNALS:
    // 0 done, 1 failed or stopped.
    void finished(int exit_status);

private:
    void print_result(bool done);

    program_core& core;
    const cli_command& command;
    cli_screen view;
    Bv_lite_delegate delegate;
    mac_toolies toolies;
    readCodes controller;
    timer_handle ending;
    std::unique_ptr<stop_signals> signals_;
};
