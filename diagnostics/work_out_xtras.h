#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// Reads maker-specific values with a list of raw commands (service 22), headers off.
class work_out_xtras : public step_machine {
public:
    work_out_xtras(operation_context& its_context, diagnostic_host& its_host);

    // A command of the list and the label of its value.
    struct extra {
        QString command;
        QString label;
    };

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void headers_off(const QString& reply);
    void value_answered(const QString& reply);
    void ask_current();
    void add_xtraInfo_item(const QString& reply, const QString& this_label);

    diagnostic_host& host;
    diagnostic_results& results;
    QList<extra> extras;
    qsizetype item = 0;
};
