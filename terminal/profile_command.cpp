#include "terminal/profile_command.h"

#include "terminal/cli_screen.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <cstdio>

bool is_profile_command(const QString& command) {
    return command == QLatin1String("vehicles") || command == QLatin1String("settings");
}

QString wrong_profile_words(const QString& command, const QStringList& words, bool yes) {
    return command == QLatin1String("vehicles") ? wrong_vehicles_words(words, yes)
                                                : wrong_settings_words(words);
}

int run_profile_command(program_core& core) {
    cli_screen view(core.options.yes);
    Bv_lite_delegate delegate(core.state, core.defaults, core.db, core.clock, view);
    mac_toolies toolies(core.state, core.defaults, core.db);
    delegate.applicationDidFinishLaunching(nullptr);

    const profile_context context{core, delegate, toolies};
    const QStringList& words = core.options.arguments;
    command_result result = core.options.command == QLatin1String("vehicles") ? run_vehicles(context, words)
                                                                              : run_settings(context, words);
    const bool done = result.problem.isEmpty();
    if (!done)
        view.show_status(result.problem);
    QByteArray printed = done ? result.text.toUtf8() : QByteArray();
    if (core.options.json) {
        result.json.insert(QStringLiteral("done"), done);
        result.json.insert(QStringLiteral("messages"), QJsonArray::fromStringList(view.messages()));
        printed = QJsonDocument(result.json).toJson(QJsonDocument::Compact) + '\n';
    }
    const bool written = std::fwrite(printed.constData(), 1, static_cast<size_t>(printed.size()), stdout) ==
                             static_cast<size_t>(printed.size()) &&
                         std::fflush(stdout) == 0;
    return done && written ? 0 : 1;
}
