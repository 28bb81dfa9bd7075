#pragma once

#include "tests/fault_matrix/operations.h"
#include "tools/virtual_adapter/faults.h"

#include <QRegularExpression>
#include <algorithm>

namespace brivant {

// Every fault of the virtual adapter.

inline constexpr const char* cutting_prompt = "\r>";

struct fault_row {
    const char* name;
    virtual_adapter::faults what;
    bool is_mended = false; // the operations come to the same end, with all their values
    bool ignition = true;
};

// clang-format off
inline const fault_row fault_rows[] = {
    {"none",                       {},                                                          true},
    {"200 ms for each answer",     {.delay_ms = 200},                                           true},
    {"longer than the time-out",   {.delay_ms = 3500}},
    {"byte by byte",               {.split = true},                                             true},
    {"two replies in one read",    {.glue_reply = 3},                                           true},
    {"  behind the initialisation",{.glue_reply = 14},                                          true},
    {"the 7th line lost",          {.lose_line = 7}},
    {"the 19th line lost",         {.lose_line = 19}},
    {"every 5th line lost",        {.lose_every = 5}},
    {"noise before",               {.garbage_before = "#\xC3\xBC\r", .garbage_every = 2},       true},
    {"noise inside",               {.garbage_inside = "<", .garbage_every = 5}},
    {"NUL and blank lines",        {.garbage_before = std::string("\r\n\0\r\r", 5)},            true},
    {"BUS INIT before",            {.garbage_before = "BUS INIT: ...OK\r", .garbage_spares_at = true}, true},
    {"STOPPED before",             {.garbage_before = "STOPPED\r", .garbage_every = 4},         true},
    {"<DATA ERROR inside",         {.garbage_inside = "<DATA ERROR\r", .garbage_every = 5}},
    {"BUFFER FULL inside",         {.garbage_inside = "\rBUFFER FULL\r", .garbage_every = 7}},
    {"a prompt inside",            {.garbage_inside = cutting_prompt, .garbage_every = 6}},
    {"the 5th reply late",         {.late_reply = 5, .late_ms = 3500},                          true},
    {"the 15th reply late",        {.late_reply = 15, .late_ms = 3500},                         true},
    {"  later than two time-outs", {.late_reply = 15, .late_ms = 6500},                         true},
    {"silent from the 6th on",     {.silent_from = 6}},
    {"silent from the 18th on",    {.silent_from = 18}},
    {"cut after the 4th",          {.cut_after = 4}},
    {"cut after the 16th",         {.cut_after = 16}},
    {"AT H1 unknown",              {.refused = {"ATH1"}}},
    {"AT RV unknown",              {.refused = {"ATRV"}}},
    {"AT DPN unknown",             {.refused = {"ATDPN"}}},
    {"the reset ends the link",    {.reset_closes = true},                                      true},
    {"hangs on AT RV",             {.hangs_on = {"ATRV"}}},
    {"hangs on AT H1",             {.hangs_on = {"ATH1"}}},
    {"a clone that hangs",         {.clone = {.hangs_on_groups = true, .refuses_count = true}}, true},
    {"  that turns, drops, cuts",  {.clone = {.turns_groups = true, .drops_one = true, .cuts_groups = true}}, true},
    {"  that says OK to settings", {.clone = {.ignored = {"S0", "ST", "AT2", "SH", "CRA"}}},    true},
    {"ignition off",               {},                                                          false, false},
};
// clang-format on

inline std::shared_ptr<virtual_adapter::car> car_for(const char* name, const fault_row& fault) {
    auto made = steady_car(name);
    if (fault.ignition)
        return made;
    virtual_adapter::car_description off = made->description();
    off.ignition = false;
    return std::make_shared<virtual_adapter::car>(std::move(off));
}

// A code is listed without its ECU where that is not told. The gearbox of the KWP car refuses to tell a VIN,
// which hides the engine's where both are heard. An answer without headers says nothing about its length: cut
// by a prompt it is a shorter one.
inline bool is_of_the_car(const fault_row& fault, const QString& row, const QStringList& clean) {
    static const QRegularExpression end("[| ]+$");
    const bool is_short =
        (row.endsWith('|') && row.size() == 6) || fault.what.garbage_inside == cutting_prompt;
    return row == " VIN: 113358XA001276" || row.startsWith("Not read (") ||
           std::any_of(clean.begin(), clean.end(), [&](const QString& known) {
               return is_short ? known.startsWith(QString(row).remove(end)) : known == row;
           });
}

inline bool all_codes_gone(const virtual_adapter::car& car) {
    const auto& ecus = car.description().ecus;
    return std::all_of(ecus.begin(), ecus.end(),
                       [](const virtual_adapter::ecu& ecu) { return ecu.codes.empty(); });
}

// The one that is not mended where the others are.
inline bool is_fuel_at_a_time_out(const fault_row& fault, const operation_row& operation) {
    return (fault.what.late_ms > 0 || fault.what.glue_reply > 0) && operation.name == QString("fuel");
}

} // namespace brivant
