#pragma once

#include "livedata/link_check.h"
#include "terminal/car_run.h"

namespace brivant {

// The command "link-check": the adapter check, its rows and its verdict.
class link_check_run : public car_run {
public:
    explicit link_check_run(program_core& its_core);
    ~link_check_run() override { leave(); }

    void start() override;

private:
    void print_result(bool done);

    link_check controller;
};

} // namespace brivant
