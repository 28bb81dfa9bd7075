#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// Reads the pending trouble codes (service 07) and the freeze frame (service 02, frame 0): the code that
// stored it and the value of each of its parameters.
class work_out_pending_freeze : public step_machine {
public:
    work_out_pending_freeze(operation_context& its_context, diagnostic_host& its_host);

    void reset_retries() { no_data_retries = 0; }

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void monitor_status_answered(const QString& reply);
    void pending_codes_answered(const QString& reply);
    // False when not all of an ECU's answer has come.
    bool list_pending(const QString& reply);
    void freezing_code_answered(const QString& reply);
    void parameters_answered(const QString& reply);
    void take_map(const QString& header, const QString& data);
    void next_parameter(const QString& reply);
    void add_freeze_item(const QString& reply, const QString& this_label);
    void no_frame();
    void finish();

    QString engine_data(const QString& reply) const;
    void progress(int done, int total);

    diagnostic_host& host;
    diagnostic_results& results;
    int no_data_retries = 0;
    bool car_answered = false;
    QString freezing_code;
    unsigned group = 0;    // the map of parameters asked for: 00, 20, 40 ...
    obd_groups parameters; // the frame's parameters by ECU
    QStringList to_ask;    // those of the engine ECU that have a row
    qsizetype asked = 0;
};
