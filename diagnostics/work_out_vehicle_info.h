#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// Reads the battery voltage, the VIN and one value of every supported PID of every ECU.
class work_out_vehicle_info : public step_machine {
public:
    work_out_vehicle_info(operation_context& its_context, diagnostic_host& its_host);

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void voltage_answered(const QString& reply);
    void vin_answered(const QString& reply);
    void value_answered(const QString& reply);
    void ask_current_pid();
    void add_heading();
    void add_row(const QString& row);
    QString vin_reply_without_headers(const QString& reply) const;
    QString name_of(const obd_group& ecu) const;
    // What the ECU answered, "N/A" when it did not.
    QString answer_of(const obd_group& ecu, const QString& reply) const;

    diagnostic_host& host;
    diagnostic_results& results;
    qsizetype ecu_index = 0;
    qsizetype pid_index = 0;
};
