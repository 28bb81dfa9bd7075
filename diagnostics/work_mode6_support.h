#pragma once

#include "diagnostics/mode6_test.h"
#include "initialisation/inner_process_pid_support.h"

// Reads the results of all on-board monitoring tests (service 06) of the engine ECU.
class work_mode6_support : public mode6_test {
public:
    work_mode6_support(operation_context& its_context, diagnostic_host& its_host,
                       inner_process_pid_support& its_pid_loop);

protected:
    void ask_for_support() override;
    void support_answered(const QString& reply) override;

private:
    inner_process_pid_support& pid_loop;
    obd_groups identifiers; // by ECU
};
