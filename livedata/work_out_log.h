#pragma once

#include "livedata/sampling_machine.h"

// The Log Run: every PID of the sample set in turn (service 01), sweep after sweep, until it is stopped. The
// O2 mode samples its sensors with it.
class work_out_log : public sampling_machine {
public:
    using sampling_machine::sampling_machine;

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void value_arrived(const QString& reply);
};
