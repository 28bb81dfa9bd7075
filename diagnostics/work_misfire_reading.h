#pragma once

#include "diagnostics/mode6_test.h"

// Reads the misfire counters of each cylinder (service 06, monitors A1 to BE).
class work_misfire_reading : public monitor_range_test {
public:
    work_misfire_reading(operation_context& its_context, diagnostic_host& its_host);
};
