#include "tests/fault_matrix/matrix_bench.h"
#include "tests/fault_matrix/operations.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace brivant {

// Every fault of the virtual adapter, at every operation, on every protocol: the operation ends, shows what
// the car has said or nothing, leaves nothing behind, and the next one is as any other.

namespace {

using virtual_adapter::faults;

// --- the protocols -----------------------------------------------------------------------------------------

constexpr std::array<const char*, 5> cars{"can11", "can29", "iso9141", "kwp", "j1850vpw"};

// --- the faults --------------------------------------------------------------------------------------------

constexpr const char* cutting_prompt = "\r>";

struct fault_row {
    const char* name;
    faults what;
    bool is_mended =
        false; // the operations come to the same end, with all their values; fuel not at a time-out
    bool ignition = true;
};

// clang-format off
const fault_row fault_rows[] = {
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

// --- one run -----------------------------------------------------------------------------------------------

struct outcome {
    bool has_end = false;
    QString ended;
    QStringList rows; // values only, sorted
    QString left_behind;
};

QString left_behind(const matrix_bench& bench) {
    QStringList things;
    if (bench.view.is_busy)
        things += "busy";
    if (bench.clock.running() > (bench.adapter->is_waiting() ? 1u : 0u))
        things += QString("%1 timers").arg(bench.clock.running());
    if (bench.is_running())
        things += "an operation";
    if (!bench.link.is_connected() && bench.facts.adapter_ready())
        things += "ready without a link";
    return things.join(", ");
}

outcome run(matrix_bench& bench, const operation_row& operation) {
    outcome made;
    operation.start(bench);
    made.has_end = bench.pump();
    made.ended = bench.ended;
    made.rows = values_of(operation, bench);
    made.left_behind = left_behind(bench);
    return made;
}

bool all_codes_gone(const virtual_adapter::car& car) {
    const auto& ecus = car.description().ecus;
    return std::all_of(ecus.begin(), ecus.end(),
                       [](const virtual_adapter::ecu& ecu) { return ecu.codes.empty(); });
}

in_process_adapter::car_pointer car_for(const char* name, const fault_row& fault) {
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
bool is_of_the_car(const fault_row& fault, const QString& row, const QStringList& clean) {
    static const QRegularExpression end("[| ]+$");
    const bool is_short =
        (row.endsWith('|') && row.size() == 6) || fault.what.garbage_inside == cutting_prompt;
    return row == " VIN: 113358XA001276" || row.startsWith("Not read (") ||
           std::any_of(clean.begin(), clean.end(), [&](const QString& known) {
               return is_short ? known.startsWith(QString(row).remove(end)) : known == row;
           });
}

// One cell of the table: "=" the same as without the fault, "<" done with some of it, "-" ended without being
// done. What is wrong goes to `problems`.
char cell(const fault_row& fault, const operation_row& operation, const char* car, const outcome& clean,
          QStringList& problems) {
    matrix_bench bench(car_for(car, fault));
    bench.adapter->faults = fault.what;
    const outcome made = run(bench, operation);
    const auto wrong = [&](const QString& what) {
        problems += QString("%1, %2, %3: %4").arg(fault.name, operation.name, car, what);
    };
    if (!made.has_end)
        wrong("does not end");
    if (!made.left_behind.isEmpty())
        wrong("left behind: " + made.left_behind);
    for (const QString& row : made.rows)
        if (!is_of_the_car(fault, row, clean.rows))
            wrong("the car did not send \"" + row + "\"");
    const bool is_clearing = &operation == &operations[1];
    if (is_clearing && made.ended == "done" && !all_codes_gone(*bench.car))
        wrong("said to be cleared, and is not");
    const bool is_same = made.ended == clean.ended && made.rows == clean.rows;
    const bool times_out = fault.what.late_ms > 0 || fault.what.glue_reply > 0;
    if (fault.is_mended && !is_same && !(times_out && operation.name == QString("fuel")))
        wrong(QString("%1 instead of %2, %3 of %4 values")
                  .arg(made.ended, clean.ended)
                  .arg(made.rows.size())
                  .arg(clean.rows.size()));
    if (!is_same && fault.ignition && !is_clearing) {
        // Another adapter of the same kind, or the same one plugged in anew.
        bench.link.disconnect();
        if (fault.what.hangs_on.empty() && fault.what.refused.empty()) {
            bench.adapter->faults = {};
            if (const outcome next = run(bench, operation);
                next.ended != clean.ended || next.rows != clean.rows)
                wrong("the next run is not as any other: " + next.ended);
        } else if (const outcome next = run(bench, operation); !next.has_end) {
            wrong("the next run does not end");
        }
    }
    return is_same ? '=' : made.ended == "done" ? '<' : '-';
}

} // namespace

TEST(faults, by_operation_and_protocol) {
    std::map<std::pair<const char*, const char*>, outcome> clean;
    for (const operation_row& operation : operations)
        for (const char* car : cars) {
            matrix_bench bench(steady_car(car));
            clean[{operation.name, car}] = run(bench, operation);
        }

    QString table = QString("%1").arg("", -28);
    for (const operation_row& operation : operations)
        table += QString("%1").arg(operation.name, -8);
    QStringList problems;
    for (const fault_row& fault : fault_rows) {
        table += QString("\n%1").arg(fault.name, -28);
        for (const operation_row& operation : operations) {
            for (const char* car : cars)
                table += cell(fault, operation, car, clean[{operation.name, car}], problems);
            table += "   ";
        }
    }
    std::printf(
        "%s\n\nProtocols: CAN 11 bit, CAN 29 bit, ISO 9141, KWP, J1850. = as without the fault, < done with "
        "some of it, - not done\n",
        qPrintable(table));
    EXPECT_EQ(problems.size(), 0) << problems.join('\n').toStdString();
}

} // namespace brivant
