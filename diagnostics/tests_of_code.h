#pragma once

#include "diagnostics/second_reading.h"

namespace brivant {

// The on-board tests of the system that a trouble code is about.
struct tests_of_code {
    int all = 0; // that have run
    int failed = 0;
    int not_run = 0; // since the codes were cleared
};
// `tests`: what service 06 told. Only tests on CAN name their system.
tests_of_code tests_of_the_system(const QString& code, const QList<noted_row>& tests);

// What is said of it: "Tests of this system: 2 of 11 failed"; "" without any.
QString in_words(const tests_of_code& tests);

} // namespace brivant
