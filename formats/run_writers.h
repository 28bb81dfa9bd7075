#pragma once

#include "formats/run_writer.h"

namespace brivant {

// The log formats, one a source of that name; make_run_writer() chooses.
std::unique_ptr<run_writer> make_timed_csv_writer(QIODevice& out);
std::unique_ptr<run_writer> make_msl_writer(QIODevice& out);
std::unique_ptr<run_writer> make_mdf4_writer(QIODevice& out);
std::unique_ptr<run_writer> make_gpx_writer(QIODevice& out);

} // namespace brivant
