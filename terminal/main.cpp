#include "base/console_log.h"
#include "terminal/bluetooth_scan_run.h"
#include "terminal/cli_run.h"
#include "terminal/expert_run.h"
#include "terminal/link_check_run.h"
#include "terminal/links_run.h"
#include "terminal/live_run.h"
#include "terminal/logs_run.h"
#include "terminal/output.h"
#include "terminal/profile_command.h"
#include "terminal/update_run.h"

#include <QCoreApplication>
#include <QTimer>
#include <sys/stat.h>

using namespace brivant;

namespace {

constexpr int wrong_usage = 2;
const QString link_check_command = QStringLiteral("link-check");

QString usage() {
    QString text = QStringLiteral(
        "Usage: brivant-cli [--wifi HOST:PORT | --bluetooth ADDRESS | --ble ADDRESS | --serial PORT[:BAUD]\n"
        "                    | --find | --demo[=CAR] | --simulate]\n"
        "                   [--profile DIR] [--json] [--metric | --imperial] COMMAND\n\n"
        "Commands:\n");
    for (const cli_command& command : cli_commands())
        text +=
            QStringLiteral("  %1%2\n").arg(QLatin1String(command.name), -22).arg(QLatin1String(command.help));
    text += live_commands_usage();
    text += QStringLiteral(
        "  send COMMAND...       raw commands, for the adapter (\"AT RV\") or the car (\"01 00\"), and their "
        "answers\n"
        "  script TEMPLATE FROM TO LOOPS\n"
        "                        one command with a byte that counts up: script \"01 {L}\" 01 05 1\n");
    text += QStringLiteral(
        "  link-check            what the adapter can do and how well, and whether it is what it says\n"
        "  links list            the adapters that are known or around, Bluetooth, LE, USB and Wi-Fi\n"
        "  links find [PORT...]  looks for an adapter everywhere; at a serial port that is not known only\n"
        "                        where it is named\n"
        "  links use ADAPTER|any, name ADAPTER NAME, forget ADAPTER, prefer ADAPTER\n"
        "                        which one is used from now on, also for the current vehicle alone\n"
        "  bluetooth-scan        the Bluetooth devices around, with their addresses\n"
        "  logs list             the stored logs\n"
        "  logs show ID          what a log holds: a report as it is stored, a run as values\n"
        "  logs export ID        a stored sampling run as a CSV file (with --txt as text; with --format\n"
        "                        timed, msl, mdf4 or gpx for other tools); a report is shown\n"
        "  logs figures ID       what a run says of the drive: way, times, fuel, each value's range\n"
        "  logs import FILE      takes a run that was exported as timed back, as a log of the current "
        "vehicle\n"
        "  logs delete ID...     deletes logs, after a question\n"
        "  update-check          asks the update server for the newest version; with the word\n"
        "                        download it fetches the archive into Documents\n"
        "  vehicles list|add|edit|delete|use, settings get|set\n"
        "                        the vehicles and the preferences; the manual page tells their words\n");
    return text + QLatin1Char('\n') + launch_options_usage() +
           QStringLiteral("  --json                one JSON object on standard output\n"
                          "  --yes                 the answer to every question\n"
                          "\nResults go to standard output, progress to standard error. Ctrl-C stops.\n"
                          "Exit status: 0 done, 1 failed or stopped, 2 wrong usage.\n");
}

// Why the options cannot be carried out, "" when they can.
QString wrong_command(const launch_options& options) {
    if (options.command.isEmpty())
        return QStringLiteral("Which command?");
    if (options.command == QLatin1String("logs"))
        return logs_run::wrong_words(options.arguments, options.yes);
    if (options.command == QLatin1String("update-check"))
        return update_run::wrong_words(options.arguments);
    if (options.command == QLatin1String("links"))
        return links_run::wrong_words(options.arguments);
    if (expert_run::is_expert_command(options.command))
        return expert_run::wrong_words(options.command, options.arguments, options.yes);
    if (is_live_command(options.command)) {
        QString problem = run_recorder::wrong_options(options);
        if (!problem.isEmpty())
            return problem;
        parse_live_words(options.command, options.arguments, problem);
        return problem;
    }
    if (is_profile_command(options.command))
        return wrong_profile_words(options.command, options.arguments, options.yes);
    if (options.command != QLatin1String("bluetooth-scan") && options.command != link_check_command &&
        !find_command(options.command))
        return QStringLiteral("There is no command %1.").arg(options.command);
    if (!options.arguments.isEmpty())
        return options.arguments.first().startsWith(u'-')
                   ? QStringLiteral("%1 takes no %2.").arg(options.command, options.arguments.first())
                   : QStringLiteral("One command at a time: %1, or %2?")
                         .arg(options.command, options.arguments.first());
    if (options.command == QLatin1String("clear-codes") && !options.yes)
        return QStringLiteral(
            "clear-codes deletes the trouble codes, the freeze frame and the test results in the "
            "car. Say that you want it: clear-codes --yes");
    return {};
}

int refuse(const QString& problem) {
    tell(problem + QStringLiteral("\nbrivant-cli --help lists commands and options.\n"));
    return wrong_usage;
}

int run_to_its_end(terminal_run&& command) {
    QObject::connect(&command, &terminal_run::finished, qApp, QCoreApplication::exit, Qt::QueuedConnection);
    QTimer::singleShot(0, &command, &terminal_run::start);
    return QCoreApplication::exec();
}

int run(const launch_options& options) {
    program_core core(options);
    if (!core.folder_problem().isEmpty())
        tell(core.folder_problem() + QLatin1Char('\n'));
    redirectConsoleLogToDocumentFolder(core.paths);
    if (options.command == QLatin1String("logs"))
        return run_to_its_end(logs_run(core));
    if (options.command == QLatin1String("update-check"))
        return run_to_its_end(update_run(core));
    if (options.command == QLatin1String("bluetooth-scan"))
        return run_to_its_end(bluetooth_scan_run(core));
    if (is_profile_command(options.command))
        return run_profile_command(core);
    QString problem;
    if (!core.start_demo(problem))
        return refuse(problem);
    if (options.command == QLatin1String("links"))
        return run_to_its_end(links_run(core));
    if (options.link == launch_options::link_choice::find) {
        if (const int failed = run_to_its_end(find_run(core)); failed != 0)
            return failed;
    }
    if (expert_run::is_expert_command(options.command))
        return run_to_its_end(expert_run(core));
    if (options.command == link_check_command)
        return run_to_its_end(link_check_run(core));
    if (is_live_command(options.command))
        return run_to_its_end(live_run(core, *parse_live_words(options.command, options.arguments, problem)));
    return run_to_its_end(cli_run(core, *find_command(options.command)));
}

} // namespace

int main(int argc, char** argv) {
    umask(S_IRWXG | S_IRWXO); // what a car and its driver have done is nobody else's business
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brivant-lite"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BV_VERSION));
    silence_console_log();

    QString problem;
    const auto options = parse_launch_options(QCoreApplication::arguments().sliced(1), problem);
    if (!options)
        return refuse(problem);
    if (options->help)
        return print(usage()), 0;
    if (options->version)
        return print(QStringLiteral("brivant-cli " BV_VERSION "\n")), 0;
    problem = wrong_command(*options);
    return problem.isEmpty() ? run(*options) : refuse(problem);
}
