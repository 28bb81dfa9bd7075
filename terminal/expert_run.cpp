#include "terminal/expert_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <unistd.h>

namespace {

// Why a command was not answered may be told up to half a second after its end.
constexpr int last_words_ms = 700;
constexpr qsizetype script_words = 4;

const QString send_command = QStringLiteral("send");
const QString script_command = QStringLiteral("script");

bool print(const QByteArray& text) {
    return std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout) ==
               static_cast<size_t>(text.size()) &&
           std::fflush(stdout) == 0;
}

// The commands of one pass, as they are sent.
QStringList commands_of(const expert_script& script) {
    QStringList commands;
    for (int byte = script.first_byte(); byte <= script.last_byte(); ++byte)
        commands += script.command(byte);
    return commands;
}

QString wrong_commands(const QStringList& commands, bool yes) {
    for (const QString& command : commands) {
        const QString problem = command_problem(command);
        if (!problem.isEmpty())
            return problem;
        const QString change = permanent_change(command);
        if (!change.isEmpty() && !yes && !isatty(STDIN_FILENO))
            return QStringLiteral("%1 %2. There is no terminal to ask at: say that you want it with --yes.")
                .arg(command, change);
    }
    return {};
}

} // namespace

void expert_run::console_screen::reload(const QString& list) {
    if (list == QLatin1String("transcript"))
        lines_came();
}

expert_run::expert_run(program_core& its_core)
    : core(its_core), view(core.options.yes, [this] { print_new_lines(); }),
      delegate(core.state, core.defaults, core.db, core.clock, view),
      toolies(core.state, core.defaults, core.db),
      controller(core.state, delegate.link, toolies, view, core.defaults, core.expert) {}

expert_run::~expert_run() {
    delegate.applicationWillTerminate();
}

bool expert_run::is_expert_command(const QString& command) {
    return command == send_command || command == script_command;
}

QString expert_run::wrong_words(const QString& command, const QStringList& words, bool yes) {
    if (command == send_command)
        return words.isEmpty() ? QStringLiteral("Send what? For example: send \"01 00\" \"AT RV\"")
                               : wrong_commands(words, yes);
    if (words.size() != script_words)
        return QStringLiteral(
            "The words after script are: template, from, to and number of loops, for example "
            "script \"01 {L}\" 01 05 1");
    QStringList problems;
    const auto script = check_script(words, problems);
    problems.removeAll(QString());
    return script ? wrong_commands(commands_of(*script), yes) : problems.join(u' ');
}

void expert_run::start() {
    signals_ = std::make_unique<stop_signals>([this] {
        waiting.clear();
        controller.stop();
    });
    core.choose_link();
    delegate.applicationDidFinishLaunching(nullptr);
    delegate.link.set_controller(&controller);
    controller.load();
    controller.operation_ended = [this](bool done) {
        const bool ends = !done || waiting.isEmpty();
        going_on = core.clock.one_shot(done ? 0 : last_words_ms, [this, ends, done] {
            if (!ends)
                return begin_next();
            if (core.options.json)
                print_json(done);
            Q_EMIT finished(done && !output_lost ? 0 : 1);
        });
    };
    commands_too = core.options.command == script_command || core.options.arguments.size() > 1;
    if (core.options.command == script_command)
        return controller.start_script(core.options.arguments);
    waiting = core.options.arguments;
    begin_next();
}

void expert_run::begin_next() {
    controller.handle_a_send(waiting.takeFirst());
}

void expert_run::print_new_lines() {
    const transcript& lines = core.expert.lines;
    QByteArray text;
    for (printed = std::max(printed, lines.first()); printed < lines.end(); ++printed) {
        const transcript_line& line = lines.at(printed);
        if (line.is_command && commands_too)
            text += "> " + line.text.toUtf8() + '\n';
        else if (!line.is_command)
            text += line.text.toUtf8() + '\n';
    }
    if (!core.options.json && !print(text))
        output_lost = true;
}

void expert_run::print_json(bool done) {
    const transcript& lines = core.expert.lines;
    QJsonArray answers;
    QJsonObject one;
    QJsonArray its_lines;
    const auto keep = [&] {
        if (!one.isEmpty() || !its_lines.isEmpty()) {
            one.insert(QStringLiteral("answer"), its_lines);
            answers += one;
        }
        its_lines = {};
    };
    for (qint64 i = lines.first(); i < lines.end(); ++i) {
        if (lines.at(i).is_command) {
            keep();
            one = {{"command", lines.at(i).text}};
        } else {
            its_lines += lines.at(i).text;
        }
    }
    keep();
    const QJsonObject result{{"answers", answers},
                             {"lines_left_out", lines.first()},
                             {"done", done},
                             {"messages", QJsonArray::fromStringList(view.messages())}};
    if (!print(QJsonDocument(result).toJson(QJsonDocument::Compact) + '\n'))
        output_lost = true;
}
