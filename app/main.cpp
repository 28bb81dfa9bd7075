#include "app/main_window.h"
#include "base/console_log.h"
#include "shell/stop_signals.h"

#include <QApplication>
#include <cstdio>
#include <sys/stat.h>

using namespace brivant;

namespace {

constexpr int wrong_usage = 2;
constexpr int demo_answer_ms = 10; // a good adapter: the demo shows how it feels in a car
constexpr int icon_sizes[] = {16, 24, 32, 48, 64, 128, 256};

void print(FILE* stream, const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stream);
}

QString usage() {
    return QStringLiteral("Usage: brivant-lite [--wifi HOST:PORT | --bluetooth ADDRESS | --ble ADDRESS | "
                          "--serial PORT[:BAUD]\n"
                          "                     | --find | --demo[=CAR] | --simulate]\n"
                          "                    [--profile DIR] [--log] [--metric | --imperial]\n\n") +
           launch_options_usage() + QStringLiteral("\nExit status: 0 after a normal end, 2 wrong usage.\n");
}

int refuse(const QString& problem) {
    print(stderr, problem + QStringLiteral("\nbrivant-lite --help lists the options.\n"));
    return wrong_usage;
}

// Why the options cannot be carried out, "" when they can.
QString wrong_wish(const launch_options& options) {
    if (!options.command.isEmpty())
        return QStringLiteral("brivant-lite takes no command, and so no %1; brivant-cli does.")
            .arg(options.command);
    if (options.json || options.yes)
        return QStringLiteral("--json and --yes are for brivant-cli.");
    return {};
}

// The words after the program's name. Read before anything needs a display.
QStringList words_of(int argc, char** argv) {
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    return words;
}

QIcon program_icon() {
    QIcon icon;
    for (const int size : icon_sizes)
        icon.addFile(QStringLiteral(":/artwork/brivant-lite-%1.png").arg(size));
    return icon;
}

int run(const launch_options& options) {
    program_core core(options);
    redirectConsoleLogToDocumentFolder(core.paths);
    QString problem;
    if (!core.start_demo(problem, demo_answer_ms))
        return refuse(problem);
    main_window window(core);
    QApplication::setWindowIcon(program_icon());
    window.start();
    window.show();
    const stop_signals closing([&window] { window.close(); }); // a run ends with its summary
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    umask(S_IRWXG | S_IRWXO); // what a car and its driver have done is nobody else's business
    QCoreApplication::setApplicationName(QStringLiteral("brivant-lite"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BV_VERSION));
    silence_console_log();

    QString problem;
    const auto options = parse_launch_options(words_of(argc, argv), problem);
    if (!options)
        return refuse(problem);
    if (options->help)
        return print(stdout, usage()), 0;
    if (options->version)
        return print(stdout, QStringLiteral("brivant-lite " BV_VERSION "\n")), 0;
    problem = wrong_wish(*options);
    if (!problem.isEmpty())
        return refuse(problem);

    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("brivant-lite"));
    QApplication::setStyle(QStringLiteral("Fusion"));
    return run(*options);
}
