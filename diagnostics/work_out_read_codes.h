#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// Reads the monitor status (service 01 PID 01) and the confirmed trouble codes (service 03) of every ECU.
class work_out_read_codes : public step_machine {
public:
    work_out_read_codes(operation_context& its_context, diagnostic_host& its_host);

    void reset_retries() { no_data_retries = 0; }

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void headers_on(const QString& reply);
    void monitor_status_answered(const QString& reply);
    void evaluate_monitor_status(const QString& reply);
    void evaluate_confirmed_codes(const QString& reply);
    void keep_codes(const QString& reply);
    void note_the_read();
    void list_codes(const QString& reply);
    void tell_result(const QString& reply);

    diagnostic_host& host;
    diagnostic_results& results;
    int no_data_retries = 0;
};
