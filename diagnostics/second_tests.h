#pragma once

#include "diagnostics/diagnostic_results.h"

#include <optional>

namespace brivant {

class text_resources;

// Test results (service 06) read by SAE J1979, beside the program's own rows of the same reply.
struct second_test {
    qsizetype own_row = -1; // among the rows given; -1: the program has none for this record
    bool same = false;
    bool other_verdict = false;  // passed here and failed there, or known to one of them only
    std::optional<test_row> row; // none when the standard reads no such record
    QString said;                // "-1.220 mV (-12.200 to 12.200), Passed"
    QString own_said;            // the same of the own row
};
struct second_tests {
    QList<second_test> pairs; // in the order of the own rows, then what the standard reads beside them
};
// `index`: of the rows of records without an own one.
second_tests read_tests_again(const answer& kept, int index, const text_resources& lists);

} // namespace brivant
