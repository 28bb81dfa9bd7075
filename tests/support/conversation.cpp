#include "tests/support/conversation.h"

#include "base/string_table.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <optional>

namespace brivant {

namespace {

constexpr int first_task_ms = 800;
constexpr int before_next_try_ms = 100; // after a reply that was no answer

QString command_of(const QString& text) {
    return text.section(" |", 0, 0);
}

int timeout_ms(const QString& text) {
    return 1000 * (text.contains(" |") ? text.section(" |", 1).toInt() : 3);
}

QString bytes_of(QString text) {
    return text.replace("\\r", "\r").replace("\\n", "\n").replace("\\0", QString(QChar(0)));
}

QString with_texts(QString text) {
    static const QRegularExpression key("\\{(\\w+)\\}");
    for (auto found = key.match(text); found.hasMatch(); found = key.match(text))
        text.replace(found.capturedStart(), found.capturedLength(),
                     localised(found.captured(1)).replace('\n', "\\n"));
    return text;
}

class player {
public:
    player(const conversation& its_talk, adapter_bench& its_bench, delivery its_pace)
        : talk(its_talk), bench(its_bench), pace(its_pace), taken(bench.written.size()) {}

    QString play() {
        for (at = 0; at < talk.steps.size() && problem.isEmpty(); ++at)
            take(talk.steps.at(at));
        if (problem.isEmpty() && taken < bench.written.size())
            problem = talk.steps.last().where + ": sent as well: " + bench.written.sliced(taken).join(", ");
        return problem;
    }

private:
    void take(const conversation::step& step) {
        switch (step.kind.unicode()) {
        case '>': return expect_command(step.text);
        case '<':
            reply += step.text + '\r';
            if (at + 1 == talk.steps.size() || talk.steps.at(at + 1).kind != '<')
                deliver(std::exchange(reply, {}) + "\r>");
            return;
        case '|': return deliver(bytes_of(step.text));
        case '!': return direct(step.text.section(' ', 0, 0), step.text.section(' ', 1));
        case '=': return expect(step.text.section(' ', 0, 0), with_texts(step.text.section(' ', 1)));
        default: fail("no such line: " + step.text);
        }
    }

    void expect_command(const QString& text) {
        if (taken == bench.written.size())
            bench.clock.advance(before_next_try_ms);
        const QString sent = bench.written.value(taken, "nothing");
        if (sent != command_of(text))
            return fail("expected " + command_of(text) + ", sent " + sent);
        ++taken;
        in_flight = text;
    }

    void deliver(const QString& text) {
        if (!bench.adapter)
            return fail("the link was never opened");
        if (pace == delivery::whole)
            return bench.adapter->receive(text);
        for (const QChar character : text)
            bench.adapter->receive(character);
    }

    void direct(const QString& what, const QString& argument) {
        if (what == "silence") {
            bench.clock.advance(timeout_ms(in_flight) - 1);
            if (taken < bench.written.size())
                return fail("sent again before the time-out");
            bench.clock.advance(1);
        } else if (what == "wait") {
            bench.clock.advance(argument.toInt());
        } else if (what == "close") {
            bench.adapter->break_off();
        } else if (what == "answer") {
            bench.view.answer(argument == "yes");
        } else if (what == "do") {
            const auto before = bench.written.size();
            run_action(argument, {});
            if (bench.written.size() == before)
                bench.clock.advance(first_task_ms);
        } else {
            run_action(what, argument);
        }
    }

    void run_action(const QString& name, const QString& argument) {
        if (!bench.actions.contains(name))
            return fail("no action " + name);
        bench.actions[name](argument);
    }

    void expect(const QString& what, const QString& text) {
        const auto is_it = [&](const QString& event) { return event.startsWith(text); };
        const auto from = bench.view.events.begin() + seen;
        if (what == "shown") {
            const auto found = std::find_if(from, bench.view.events.end(), is_it);
            if (found == bench.view.events.end())
                return fail("not shown: " + text +
                            "; but: " + QStringList(bench.view.events.mid(seen)).join(" / "));
            seen = found - bench.view.events.begin() + 1;
        } else if (what == "never") {
            if (std::any_of(bench.view.events.begin(), bench.view.events.end(), is_it))
                fail("shown: " + text);
        } else if (!bench.facts.contains(what)) {
            fail("no fact " + what);
        } else if (const QString fact = bench.facts[what](); fact != text) {
            fail(what + " is " + fact + ", not " + text);
        }
    }

    void fail(const QString& reason) { problem = talk.steps.at(at).where + ": " + reason; }

    const conversation& talk;
    adapter_bench& bench;
    const delivery pace;
    qsizetype at = 0;
    qsizetype taken;    // commands that were expected so far
    qsizetype seen = 0; // events that were asked for so far
    QString reply;
    QString in_flight;
    QString problem;
};

} // namespace

QStringList conversations_in(const QString& folder) {
    return QDir(folder).entryList({"*.txt"}, QDir::Files, QDir::Name);
}

conversation conversation::load(const QString& file) {
    QFile opened(file);
    const bool is_open = opened.open(QIODevice::ReadOnly);
    return parse(QString::fromUtf8(is_open ? opened.readAll() : "? no such file"), QFileInfo(file).fileName(),
                 QFileInfo(file).path());
}

conversation conversation::parse(const QString& text, const QString& name, const QString& folder) {
    conversation talk;
    int number = 0;
    for (const QString& line : text.split('\n')) {
        const step made{line.isEmpty() ? QChar('#') : line.front(), line.mid(2),
                        name + ":" + QString::number(++number)};
        if (made.kind == '#')
            continue;
        if (made.kind == '!' && made.text.startsWith("include ")) {
            talk.steps += load(folder + "/" + made.text.section(' ', 1)).steps;
        } else if (made.kind == '!' && made.text.startsWith("again ")) {
            const qsizetype last = talk.commands().last();
            const QList<step> once = talk.steps.sliced(last);
            for (int times = made.text.section(' ', 1).toInt(); times > 0; --times)
                talk.steps += once;
        } else {
            talk.steps += made;
        }
    }
    return talk;
}

QList<qsizetype> conversation::commands() const {
    QList<qsizetype> places;
    for (qsizetype i = 0; i < steps.size(); ++i)
        if (steps.at(i).kind == '>')
            places += i;
    return places;
}

QList<conversation::step> conversation::reply_to(qsizetype command) const {
    QList<step> reply;
    for (qsizetype i = command + 1; i < steps.size() && (steps[i].kind == '<' || steps[i].kind == '|'); ++i)
        reply += steps.at(i);
    return reply;
}

QString play(const conversation& talk, adapter_bench& bench, delivery pace) {
    return player(talk, bench, pace).play();
}

conversation disturbed(const conversation& talk, qsizetype command, disturbance what) {
    using step = conversation::step;
    const step sent = talk.steps.at(command);
    const QList<step> reply = talk.reply_to(command);
    QString bytes; // of one reply
    for (const step& line : reply)
        bytes += line.kind == '<' ? line.text + "\\r" : line.text;
    if (!reply.isEmpty() && reply.last().kind == '<')
        bytes += "\\r>";
    const step silence{'!', "silence", sent.where};
    const step spoken{'|', bytes, sent.where};
    const step spoken_twice{'|', bytes + bytes, sent.where};
    const step rubbish{'<', "#", sent.where};

    conversation changed;
    changed.steps = talk.steps.first(command + 1);
    switch (what) {
    case disturbance::time_out: changed.steps += {silence, sent, spoken}; break;
    case disturbance::late: changed.steps += {silence, sent, spoken, spoken}; break;
    case disturbance::late_glued: changed.steps += {silence, sent, spoken_twice}; break;
    case disturbance::noise: changed.steps += {rubbish, sent, spoken}; break;
    }
    changed.steps += talk.steps.sliced(command + 1 + reply.size());
    return changed;
}

} // namespace brivant
