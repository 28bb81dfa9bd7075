#include "tests/fault_matrix/faults_under_test.h"
#include "tests/fault_matrix/matrix_bench.h"
#include "tests/fault_matrix/operations.h"

#include <gtest/gtest.h>

namespace brivant {

// Every fault of the virtual adapter, at every operation, on every protocol: the operation ends, shows what
// the car has said or nothing, leaves nothing behind, and the next one is as any other.

namespace {

// --- the protocols -----------------------------------------------------------------------------------------

constexpr std::array<const char*, 5> cars{"can11", "can29", "iso9141", "kwp", "j1850vpw"};

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
    if (fault.is_mended && !is_same && !is_fuel_at_a_time_out(fault, operation))
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
