#pragma once

#include "formats/run_writer.h"
#include "livedata/live_results.h"
#include "shell/program_core.h"

#include <QFile>

namespace brivant {

// A run as it goes on, in a format of other tools, on standard output. MDF is written at earlier places, too:
// for that standard output has to be a file.
class run_recorder {
public:
    // Why a run cannot be told so, "" when it can.
    static QString wrong_options(const launch_options& options);

    // All of it outlives the recorder.
    run_recorder(const run_format& format, program_core& its_core, const live_results& its_results);

    // The row before the matrix's last one is complete, a sweep or a gap. False when it could not be written.
    bool take_row();
    bool end();
    // As a sentence; "" while nothing is wrong.
    const QString& problem() const { return writer->problem(); }

private:
    run_head head() const;
    timed_sweep latest_row() const;

    program_core& core;
    const live_results& results;
    QFile out;
    std::unique_ptr<run_writer> writer;
    bool has_begun = false;
    qsizetype marks_written = 0;
};

} // namespace brivant
