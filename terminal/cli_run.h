#pragma once

#include "terminal/car_run.h"
#include "terminal/commands.h"

namespace brivant {

// One command of the terminal program, from the start of the operation to its result on standard output.
class cli_run : public car_run {
public:
    cli_run(program_core& its_core, const cli_command& its_command);
    ~cli_run() override { leave(); }

    void start() override;

private:
    void print_result(bool done);

    const cli_command& command;
    readCodes controller;
};

} // namespace brivant
