#pragma once

#include "livedata/sampling_machine.h"

// The fuel-consumption run: vehicle speed and air flow, and from them the fuel economy (the program's own PID
// "E4"). A reply that does not come ends it.
class work_out_mpg : public sampling_machine {
public:
    using sampling_machine::sampling_machine;

    // Works out the economy from speed and air flow. With false: by the factor alone.
    void compute_MPG(bool by_density);

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    enum place { economy, speed, air_flow }; // in the sample set

    void start();
    void value_arrived(const QString& reply);
    void speed_arrived(const QString& data);
    void air_flow_arrived(const QString& data);
    void show_economy(const QString& data);

    double cur_Speed = 0;
    double cur_MAF = 0;
    double cur_MPG = 0; // miles per US gallon
    double cur_KPL = 0; // kilometres per litre
    QString prev_reply; // the speed reply of this sweep
};
