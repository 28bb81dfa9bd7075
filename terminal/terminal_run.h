#pragma once

#include "shell/program_core.h"
#include "shell/stop_signals.h"

namespace brivant {

// A command of the terminal program that goes on in the event loop, from start() to the signal of its end.
class terminal_run : public QObject {
    Q_OBJECT

public:
    explicit terminal_run(program_core& its_core) : core(its_core) {}

    virtual void start() = 0;

Q_SIGNALS:
    // 0 done, 1 failed or stopped.
    void finished(int exit_status);

protected:
    // What Ctrl-C and a polite kill call from now on.
    void on_stop(std::function<void()> call) { signals_ = std::make_unique<stop_signals>(std::move(call)); }

    program_core& core;

private:
    std::unique_ptr<stop_signals> signals_;
};

} // namespace brivant
