#pragma once

#include "base/string_table.h"
#include "tests/fault_matrix/operation_bench.h"

#include <QRegularExpression>

namespace brivant {

// Every operation with the car, and what it comes to.

inline QStringList after_the_index(const QStringList& rows) {
    QStringList texts;
    for (const QString& row : rows)
        texts += row.section('|', 1);
    return texts;
}

inline QStringList texts(const operation_bench& bench, part which) {
    return row_texts(which, bench.results.rows(which));
}

inline QStringList codes_and_readiness(const operation_bench& bench) {
    QStringList rows = texts(bench, part::codes);
    for (const readiness_row& row : bench.results.readinessFlagsArray)
        rows += row.label + ": " + row.state;
    return rows;
}

inline QStringList live_rows(operation_bench& bench) {
    QStringList rows;
    for (const QString& column : bench.columns)
        rows += column;
    for (const QStringList& line : bench.profile.db.retrieve_from_DB("SELECT DATA FROM LOGGIES_DATA"))
        for (const QString& cell : line[0].split(','))
            rows += "stored " + cell;
    rows.removeDuplicates();
    return rows;
}

inline void start_live(operation_bench& bench, int mode) {
    bench.begin(bench.live_controller);
    bench.live_controller.comboBoxSelectionDidChange(mode);
    if (!bench.live_controller.is_running())
        bench.live_controller.runLogs();
}

template <void (readCodes::*Start)()>
void diagnose(operation_bench& bench) {
    bench.begin(bench.diagnostics);
    (bench.diagnostics.*Start)();
}

struct operation_row {
    const char* name;
    void (*start)(operation_bench&);
    QStringList (*rows)(operation_bench&);
};
inline void PrintTo(const operation_row& its, std::ostream* out) {
    *out << its.name;
}

// clang-format off
inline const operation_row operations[] = {
    {"read",    diagnose<&readCodes::l_readCodes>,            [](operation_bench& b) { return codes_and_readiness(b); }},
    {"clear",   diagnose<&readCodes::start_clearing>,         [](operation_bench&)   { return QStringList(); }},
    {"pending", diagnose<&readCodes::readPendingFreezeCodes>, [](operation_bench& b) { return texts(b, part::pending) + texts(b, part::freeze); }},
    {"vehicle", diagnose<&readCodes::readVehicleInfo>,        [](operation_bench& b) { return texts(b, part::vehicle); }},
    {"mode 6",  diagnose<&readCodes::readMode6Support>,       [](operation_bench& b) { return after_the_index(texts(b, part::mode6)); }},
    {"misfire", diagnose<&readCodes::readMisfire>,            [](operation_bench& b) { return after_the_index(texts(b, part::misfire)); }},
    {"O2",      diagnose<&readCodes::readO2>,                 [](operation_bench& b) { return after_the_index(texts(b, part::o2)); }},
    {"extras",  diagnose<&readCodes::readXtras>,              [](operation_bench& b) { return texts(b, part::extras); }},
    {"log run", [](operation_bench& b) { start_live(b, 0); },    live_rows},
    {"fuel",    [](operation_bench& b) { start_live(b, 1); },    live_rows},
    {"O2 run",  [](operation_bench& b) { start_live(b, 2); },    live_rows},
    {"boost",   [](operation_bench& b) { start_live(b, 3); },    live_rows},
    {"console", [](operation_bench& b) {
        b.begin(b.console);
        b.console.load();
        b.console.start_script({"01 {L}", "0C", "0F", "2"});
    }, [](operation_bench&) { return QStringList(); }}, // what comes is shown as it is
    {"check",   [](operation_bench& b) { b.begin(b.checking); b.checking.start(); },
                                                                 [](operation_bench&)   { return QStringList(); }},
};
// clang-format on

// What stands there in place of a value, and what counts the others.
inline bool is_a_value(const QString& row) {
    static const QRegularExpression no_value(
        "N/A|Not Supported|Not Available|stored ~|^ --- ECU|^No of ECUS");
    return row != localised("NO_CODES") && !row.contains(no_value);
}

// What an operation has shown, values only, sorted.
inline QStringList values_of(const operation_row& operation, operation_bench& bench) {
    QStringList values;
    for (const QString& row : operation.rows(bench))
        if (is_a_value(row))
            values += row;
    values.sort();
    return values;
}

} // namespace brivant
