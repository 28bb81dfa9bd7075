#pragma once

#include <QString>
#include <deque>

namespace brivant {

struct transcript_line {
    bool is_command = false;
    QString text;
};

// What was sent by hand and what came back, line by line. It holds the last 10,000 lines; the oldest go. A
// line longer than 1,024 characters goes on in the next one, and a character that cannot be shown stands as
// U+FFFD, so that an adapter that sends rubbish without an end fills neither the memory nor the screen.
class transcript {
public:
    static constexpr qsizetype most_lines = 10000;
    static constexpr qsizetype longest_line = 1024;

    void add_command(const QString& command) { add(command, true); }
    // The lines of a reply are separated by "\r", "\n" or both.
    void add_reply(const QString& reply) { add(reply, false); }
    void clear();

    // Lines are numbered from the first that ever was: those from first() to end() - 1 are held.
    qint64 first() const { return gone; }
    qint64 end() const { return gone + static_cast<qint64>(lines.size()); }
    bool is_empty() const { return lines.empty(); }
    const transcript_line& at(qint64 number) const { return lines.at(static_cast<size_t>(number - gone)); }
    // All of it, "> " in front of each command.
    QString as_text() const;

private:
    void add(QString text, bool is_command);

    std::deque<transcript_line> lines;
    qint64 gone = 0;
};

} // namespace brivant
