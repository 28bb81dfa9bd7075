#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// Reads the permanent trouble codes (service 0A) and the monitor status of this drive cycle (service 01, PID
// 41). The replies are kept; permanent_codes.h reads them.
class work_out_permanent : public step_machine {
public:
    work_out_permanent(operation_context& its_context, diagnostic_host& its_host);

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void ask_the_car(int next, const QString& command);
    void keep(const QString& request, const QString& reply);
    void codes_answered(const QString& reply);
    void drive_cycle_answered(const QString& reply);

    diagnostic_host& host;
    diagnostic_results& results;
};
