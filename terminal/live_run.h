#pragma once

#include "charts/sample_matrix.h"
#include "livedata/actions.h"
#include "terminal/car_run.h"
#include "terminal/live_words.h"
#include "terminal/mark_input.h"
#include "terminal/run_recorder.h"

#include <QElapsedTimer>
#include <memory>
#include <vector>

namespace brivant {

// One sampling run in the terminal: each sweep is a line on standard output as soon as it is complete, and
// stored before it is printed where that was asked for. Nothing grows with the run, which may last for days.
class live_run : public car_run, private run_observer {
public:
    live_run(program_core& its_core, const live_words& its_words);
    ~live_run() override { leave(); }

    void start() override;

private:
    // run_observer
    void set_changed() override {}
    void run_started() override {}
    void run_ended() override;
    void sample_arrived(int index) override;
    void sweep_completed() override;
    void gap_begun() override;
    void car_gone() override;
    void o2_layout_known(int, const QString&) override {}
    void set_sensor_value(int, const QString&) override {}

    void stop(bool as_asked);
    bool print_row(bool is_gap);
    QByteArray header() const;
    QByteArray csv_line() const;
    QByteArray json_line(bool is_gap) const;
    QString summary() const;
    bool every_asked_pid_answered() const;
    void end();

    const live_words words;
    live_results results; // of the latest sweeps
    std::unique_ptr<actions> controller;
    std::unique_ptr<run_recorder> recorder; // where another format was asked for
    timer_handle time_limit;
    mark_input marks{[this](const QString& word) { controller->put_mark(word); }};

    struct seen_column {
        series_summary numbers; // the smallest and the largest so far
        bool answered = false;
    };
    std::vector<seen_column> seen;
    QString gain;               // of a fast run instead, "" for little
    bool position_told = false; // at the first sweep that is kept
    bool as_asked = false;      // the run ended where it was to end
    bool ended_in_gap = false;
};

} // namespace brivant
