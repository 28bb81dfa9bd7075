#pragma once

#include "tests/fault_matrix/in_process_adapter.h"
#include "tests/fault_matrix/operation_bench.h"

namespace brivant {

// It is there before the bench.
struct cranked_clock {
    hand_timers clock;
};

// The controllers on one link to a virtual adapter, and a person who answers Yes, and ends a sampling run
// after some minutes too. Time is cranked by hand.
class matrix_bench : public cranked_clock, public operation_bench {
public:
    static constexpr int minutes_of_a_run = 3;

    explicit matrix_bench(in_process_adapter::car_pointer its_car)
        : operation_bench(clock,
                          [this](const adapter_place&) {
                              auto made = std::make_unique<in_process_adapter>(clock, car);
                              adapter = made.get();
                              return made;
                          }),
          car(its_car) {
        link.openInterfaceConnection(); // so that there is an adapter to be given faults
        link.disconnect();
    }

    in_process_adapter::car_pointer car;
    in_process_adapter* adapter = nullptr;
    int step_ms = 50;                   // an adapter with timing needs smaller ones
    QList<qsizetype> commands_by_sweep; // how many commands the adapter had carried out at the end of each

    void begin(task_controller& controller) override {
        operation_bench::begin(controller);
        commands_by_sweep.clear();
        spent_ms = 0;
    }
    // What happens next. Time passes only when nothing is on the way.
    void step() {
        view.answer(true);
        if (adapter->deliver_next())
            return;
        clock.advance(0);
        if (adapter->deliver_next() || !is_running())
            return;
        clock.advance(step_ms);
        spent_ms += step_ms;
    }
    int spent() const { return spent_ms; }
    void pump_until(const std::function<bool()>& reached, int minutes = 15) {
        const int limit_ms = spent_ms + minutes * 60000;
        while (!reached() && spent_ms < limit_ms)
            step();
    }
    // To the end of the operation. False when it has none.
    bool pump() {
        if (live_controller.is_running()) {
            pump_until([this] { return !is_running(); }, minutes_of_a_run);
            if (is_running())
                live_controller.stop();
        }
        pump_until([this] { return !is_running(); });
        const bool has_end = !is_running();
        for (int piece = 0; piece < 100 && adapter->deliver_next(); ++piece) { // late replies are nobody's
        }
        clock.advance(2000); // last words
        return has_end;
    }

private:
    void sweep_completed() override {
        commands_by_sweep += adapter->commands.size();
        operation_bench::sweep_completed();
    }

    int spent_ms = 0;
};

} // namespace brivant
