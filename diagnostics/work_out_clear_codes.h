#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// Clears the trouble codes and all that goes with them (service 04).
class work_out_clear_codes : public step_machine {
public:
    work_out_clear_codes(operation_context& its_context, diagnostic_host& its_host);

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void clear_answered(const QString& reply);
    bool is_positive(const QString& reply) const;

    diagnostic_host& host;
    diagnostic_results& results;
};
