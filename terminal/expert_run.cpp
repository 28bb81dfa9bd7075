#include "terminal/expert_run.h"

#include "terminal/output.h"

#include <QJsonArray>
#include <unistd.h>

namespace brivant {

namespace {

constexpr qsizetype script_words = 4;

const QString send_command = QStringLiteral("send");
const QString script_command = QStringLiteral("script");

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

expert_run::expert_run(program_core& its_core)
    : car_run(its_core), controller(core.car, delegate.link, core.toolies, view, core.defaults, core.expert) {
    view.on_reload = [this](part what) {
        if (what == part::transcript)
            print_new_lines();
    };
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
    on_stop([this] {
        waiting.clear();
        controller.stop();
    });
    begin();
    delegate.link.set_controller(&controller);
    controller.load();
    controller.operation_ended = [this](bool done) {
        const bool ends = !done || waiting.isEmpty();
        after_last_words(done, [this, ends, done] {
            if (!ends)
                return begin_next();
            if (core.options.json)
                print_answers(done);
            Q_EMIT finished(done && is_all_printed() ? 0 : 1);
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
    if (core.options.json)
        return;
    print(text);
    is_all_printed(); // as it comes
}

void expert_run::print_answers(bool done) {
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
    print_json(view.with_messages({{"answers", answers}, {"lines_left_out", lines.first()}}, done));
}

} // namespace brivant
