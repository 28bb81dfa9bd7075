#include "link/link_probe.h"

#include <QStringList>

#include <algorithm>

namespace brivant {

namespace {

constexpr int ask_again_ms = 1000;
constexpr qsizetype most_heard = 512;
constexpr qsizetype longest_greeting = 40;

bool is_plain(QChar c) {
    return c >= u' ' && c <= u'~' && c != u'<' && c != u'>' && c != u'{' && c != u'$' && c != u'#';
}

bool is_greeting(const QString& line) {
    return line.size() <= longest_greeting && std::all_of(line.begin(), line.end(), is_plain) &&
           std::any_of(line.begin(), line.end(), [](QChar c) { return c.isDigit(); }) &&
           std::any_of(line.begin(), line.end(), [](QChar c) { return c.isLetter(); });
}

bool is_echo(const QString& line) {
    return QString(line).remove(u' ').compare(QLatin1String("ATI"), Qt::CaseInsensitive) == 0;
}

} // namespace

std::optional<QString> greeting_in(const QString& heard) {
    QString text = QString(heard).remove(QChar::Null).replace(u'\n', u'\r').trimmed();
    if (!text.endsWith(u'>') || text.chopped(1).endsWith(u' '))
        return std::nullopt;
    text.chop(1);
    if (!text.endsWith(u'\r'))
        return std::nullopt; // the prompt stands on a line of its own
    // What it was asked before may have its prompt first; one that is asked twice answers twice.
    QStringList lines;
    for (const QString& part : text.split(u'\r', Qt::SkipEmptyParts)) {
        const QString line = (part.startsWith(u'>') ? part.sliced(1) : part).trimmed();
        if (!line.isEmpty() && !is_echo(line))
            lines += line;
    }
    lines.removeDuplicates();
    return lines.size() == 1 && is_greeting(lines.first()) ? std::optional(lines.first()) : std::nullopt;
}

int link_probe::patience_ms(int kind) {
    switch (kind) {
    case interface_wifi: return 3000;
    case interface_serial: return 5000; // every speed is tried
    default: return 15000;              // a radio looks for its device first
    }
}

link_probe::link_probe(const adapter_address& where, const QString& name, const transport_maker& make,
                       timers& time_source, teller tell)
    : clock(time_source), on_end(std::move(tell)), began(time_source.microseconds()) {
    result.where = where;
    result.name = name;
    place.choose(where, name);
    link = make(place);
    connect(link.get(), &transport::opened, this, &link_probe::ask);
    connect(link.get(), &transport::OBDevent, this, &link_probe::take);
    connect(link.get(), &transport::failed, this, [this](const QString& reason) { end(reason); });
    connect(link.get(), &transport::closed, this,
            [this] { end(QStringLiteral("It closed the connection.")); });
    patience = clock.one_shot(patience_ms(where.kind), [this] {
        end(heard.isEmpty() ? QStringLiteral("Nothing answers there.")
                            : QStringLiteral("What answers there is no adapter."));
    });
    link->open();
}

link_probe::~link_probe() {
    link->disconnect(this);
    link->close();
}

void link_probe::ask() {
    if (telling)
        return;
    heard.clear();
    link->write("AT I\r");
    next_try = clock.one_shot(ask_again_ms, [this] {
        if (!greeting_in(heard)) // half an answer, or it was busy with what it was asked before
            link->write("AT I\r");
    });
}

void link_probe::take(const QString& text) {
    if (heard.size() < most_heard)
        heard += text;
    if (const auto greeting = greeting_in(heard)) {
        result.greeting = *greeting;
        end(QString());
    } else if (heard.size() >= most_heard) {
        end(QStringLiteral("What answers there is no adapter."));
    }
}

void link_probe::end(const QString& problem) {
    if (telling)
        return;
    result.problem = problem;
    result.milliseconds = static_cast<int>((clock.microseconds() - began) / 1000);
    if (link->speed() != 0)
        result.where.number = link->speed();
    if (!link->far_end_name().isEmpty())
        result.name = link->far_end_name();
    patience.reset();
    next_try.reset();
    telling = clock.one_shot(0, [this, tell = on_end, what = result] { tell(*this, what); });
}

} // namespace brivant
