#pragma once

#include "livedata/sampling_machine.h"

// The boost run: manifold pressure shown as boost (the program's own PID "E5"), fuel trims and fuel pressure.
class work_out_boost : public sampling_machine {
public:
    using sampling_machine::sampling_machine;

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void value_arrived(const QString& reply);
};
