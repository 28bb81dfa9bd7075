#include "base/console_log.h"
#include "terminal/cli_run.h"
#include "terminal/logs_run.h"

#include <QCoreApplication>
#include <QTimer>
#include <cstdio>

namespace {

constexpr int wrong_usage = 2;

void print(FILE* stream, const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stream);
}

QString usage() {
    QString text = QStringLiteral(
        "Usage: brivant-cli [--wifi HOST:PORT | --demo[=CAR] | --simulate] [--profile DIR] [--json]\n"
        "                   [--metric | --imperial] COMMAND\n\n"
        "Commands:\n");
    for (const cli_command& command : cli_commands())
        text += QStringLiteral("  %1%2\n").arg(QLatin1String(command.name), -22).arg(QLatin1String(command.help));
    text += QStringLiteral("  logs list             the stored logs\n"
                           "  logs export ID        a stored sampling run as a CSV file (with --txt as text); a report is shown\n");
    return text + QLatin1Char('\n') + launch_options_usage() +
           QStringLiteral("  --log                 store the results, whatever the preference says\n"
                          "  --json                one JSON object on standard output\n"
                          "  --yes                 the answer to every question\n"
                          "\nResults go to standard output, progress to standard error. Ctrl-C stops.\n"
                          "Exit status: 0 done, 1 failed or stopped, 2 wrong usage.\n");
}

// Why the options cannot be carried out, "" when they can.
QString wrong_command(const launch_options& options) {
    if (options.command.isEmpty())
        return QStringLiteral("Which command?");
    if (options.command == QLatin1String("logs"))
        return logs_run::wrong_words(options.arguments);
    if (!find_command(options.command))
        return QStringLiteral("There is no command %1.").arg(options.command);
    if (!options.arguments.isEmpty())
        return QStringLiteral("One command at a time: %1, or %2?").arg(options.command, options.arguments.first());
    if (options.command == QLatin1String("clear-codes") && !options.yes)
        return QStringLiteral("clear-codes deletes the trouble codes, the freeze frame and the test results in the "
                              "car. Say that you want it: clear-codes --yes");
    return {};
}

int refuse(const QString& problem) {
    print(stderr, problem + QStringLiteral("\nbrivant-cli --help lists commands and options.\n"));
    return wrong_usage;
}

template <typename command_run, typename... arguments>
int run_to_its_end(arguments&&... its) {
    command_run command(std::forward<arguments>(its)...);
    QObject::connect(&command, &command_run::finished, qApp, [](int status) { QCoreApplication::exit(status); },
                     Qt::QueuedConnection);
    QTimer::singleShot(0, &command, &command_run::start);
    return QCoreApplication::exec();
}

int run(const launch_options& options) {
    program_core core(options);
    if (!core.folder_problem().isEmpty())
        print(stderr, core.folder_problem() + QLatin1Char('\n'));
    redirectConsoleLogToDocumentFolder(core.paths);
    if (options.command == QLatin1String("logs"))
        return run_to_its_end<logs_run>(core);
    QString problem;
    if (!core.start_demo(problem))
        return refuse(problem);
    return run_to_its_end<cli_run>(core, *find_command(options.command));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brivant-lite"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BV_VERSION));
    silence_console_log();

    QString problem;
    const auto options = parse_launch_options(QCoreApplication::arguments().sliced(1), problem);
    if (!options)
        return refuse(problem);
    if (options->help)
        return print(stdout, usage()), 0;
    if (options->version)
        return print(stdout, QStringLiteral("brivant-cli " BV_VERSION "\n")), 0;
    problem = wrong_command(*options);
    return problem.isEmpty() ? run(*options) : refuse(problem);
}
