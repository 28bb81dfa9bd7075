#include "terminal/cli_run.h"

#include "terminal/output.h"

namespace brivant {

cli_run::cli_run(program_core& its_core, const cli_command& its_command)
    : car_run(its_core), command(its_command),
      controller(core.car, delegate.link, core.toolies, view, core.diagnostics, core.paths) {}

void cli_run::start() {
    on_stop([this] { controller.stop(); });
    begin();
    delegate.link.set_controller(&controller);
    controller.operation_ended = [this](bool done) {
        after_last_words(done, [this, done] { print_result(done); });
    };
    command.start(controller);
}

void cli_run::print_result(bool done) {
    if (core.options.json)
        print_json(view.with_messages(command.as_json(controller), done));
    else if (done || controller.results.has_any_rows())
        print(command.as_text(controller)); // what was read until it failed, too
    Q_EMIT finished(done && controller.storing_problem().isEmpty() && is_all_printed() ? 0 : 1);
}

} // namespace brivant
