#pragma once

#include "diagnostics/mode6_test.h"

// Reads the test results of the oxygen sensor monitors (service 06, monitors 01 to 10).
class work_O2_mode : public monitor_range_test {
public:
    work_O2_mode(operation_context& its_context, diagnostic_host& its_host);
};
