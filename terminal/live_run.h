#pragma once

#include "charts/sample_matrix.h"
#include "livedata/actions.h"
#include "shell/Bv_lite_delegate.h"
#include "shell/program_core.h"
#include "terminal/cli_screen.h"
#include "terminal/live_words.h"
#include "terminal/stop_signals.h"

#include <QElapsedTimer>
#include <memory>
#include <vector>

// One sampling run in the terminal: each sweep is a line on standard output as soon as it is complete, and
// stored before it is printed where that was asked for. Nothing grows with the run, which may last for days.
class live_run : public QObject, private run_observer {
    Q_OBJECT

public:
    live_run(program_core& its_core, const live_words& its_words);
    ~live_run() override;

    void start();

Q_SIGNALS:
    // 0 done, 1 failed, or no value came.
    void finished(int exit_status);

private:
    // A terminal that is not told every reply.
    class quiet_screen : public cli_screen {
    public:
        using cli_screen::cli_screen;
        void show_status(const QString& text) override;
    };

    // run_observer
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override;
    void sample_arrived(int index) override;
    void sweep_completed() override;
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    void stop(bool as_asked);
    void print(const QByteArray& line);
    QByteArray header() const;
    QByteArray csv_line() const;
    QByteArray json_line() const;
    QString summary() const;
    bool every_asked_pid_answered() const;
    void end();

    program_core& core;
    const live_words words;
    quiet_screen view;
    Bv_lite_delegate delegate;
    live_results results; // of the latest sweeps
    std::unique_ptr<actions> controller;
    std::unique_ptr<stop_signals> signals_;
    timer_handle time_limit;
    timer_handle ending;

    struct seen_column {
        series_summary numbers; // the smallest and the largest so far
        bool answered = false;
    };
    std::vector<seen_column> seen;
    bool as_asked = false; // the run ended where it was to end
    bool output_lost = false;
};
