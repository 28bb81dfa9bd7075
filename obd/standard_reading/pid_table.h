#pragma once

#include "base/shared_types.h"

#include <QString>
#include <span>

namespace brivant {

// The rows behind decode_pid.

enum class in_unit {
    none,
    percent,
    celsius,
    km_per_hour,
    kilometre,
    kilopascal,
    kilopascal_hg,
    kilopascal_h2o,
    pascal,
    rpm,
    degree,
    gram_per_second,
    volt,
    milliampere,
    ampere,
    second,
    minute,
    hour,
    litre_per_hour,
    newton_metre,
    kilogram_per_hour,
    milligram_per_stroke,
    ppm,
    milligram_per_cubic_metre,
    litre
};
// A unit in one unit system: standard value x factor + offset.
struct shown_unit {
    double factor = 1;
    double offset = 0;
    int decimals = 0; // the fewest to show
    QString name;
};
shown_unit shown_unit_of(in_unit unit, unit_system units);

constexpr int always = -1;
struct quantity_row {
    int pid;
    int support; // bit of the first data byte that says the quantity is there; `always` without one
    int at;      // first byte
    int bytes;   // big endian
    bool is_signed;
    double factor;
    double offset;
    int decimals;
    in_unit unit;
    const char* name;
};
// Runs of PIDs that read alike (14-1B, 24-2B, 34-3B; 81, 82, 89, 8A) stand under the first one: see
// first_of_run.
std::span<const quantity_row> quantity_rows();
int first_of_run(int pid);

// A data byte that stands for one state as a whole, or a bit of one.
struct state_row {
    int pid;
    int support; // as above
    int at;
    int mask; // the bits that count
    int value;
    const char* text; // "" where there is nothing to say
};
std::span<const state_row> state_rows();

} // namespace brivant
