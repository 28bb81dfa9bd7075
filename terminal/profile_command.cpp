#include "terminal/profile_command.h"

#include "terminal/cli_screen.h"
#include "terminal/output.h"

namespace brivant {

bool is_profile_command(const QString& command) {
    return command == QLatin1String("vehicles") || command == QLatin1String("settings");
}

QString wrong_profile_words(const QString& command, const QStringList& words, bool yes) {
    return command == QLatin1String("vehicles") ? wrong_vehicles_words(words, yes)
                                                : wrong_settings_words(words);
}

int run_profile_command(program_core& core) {
    cli_screen view(core.options.yes);
    Bv_lite_delegate delegate(core.place, core.adapter, core.car, core.toolies, core.clock, view);
    delegate.applicationDidFinishLaunching(nullptr);

    const profile_context context{core, delegate, core.toolies};
    const QStringList& words = core.options.arguments;
    const command_result result = core.options.command == QLatin1String("vehicles")
                                      ? run_vehicles(context, words)
                                      : run_settings(context, words);
    const bool done = result.problem.isEmpty();
    if (!done)
        view.show_status(result.problem);
    if (core.options.json)
        print_json(view.with_messages(result.json, done));
    else if (done)
        print(result.text);
    return done && is_all_printed() ? 0 : 1;
}

} // namespace brivant
