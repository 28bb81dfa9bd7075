#pragma once

#include "livedata/sampling_machine.h"

// Asks the car which oxygen sensors it has (PID 13), and hands over to the Log Run of these sensors.
class work_o2_layout : public sampling_machine {
public:
    using sampling_machine::sampling_machine;

    void redo() override { context.link.send_again(); }

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void layout_arrived(const QString& reply);
    QStringList sensor_set(unsigned mask, const obd_group& engine) const;
};
