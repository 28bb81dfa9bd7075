#include "expert/transcript.h"

#include <QStringList>

namespace brivant {

void transcript::add(QString text, bool is_command) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n').replace(u'\t', u' ');
    for (QChar& character : text) {
        if (character != u'\n' && !character.isPrint())
            character = QChar::ReplacementCharacter;
    }
    const QStringList pieces = text.split(u'\n');
    for (const QString& piece : pieces) {
        qsizetype at = 0;
        do {
            lines.push_back({is_command, piece.mid(at, longest_line)});
            at += longest_line;
        } while (at < piece.size());
    }
    while (static_cast<qsizetype>(lines.size()) > most_lines) {
        lines.pop_front();
        ++gone;
    }
}

void transcript::clear() {
    gone = end();
    lines.clear();
}

QString transcript::as_text() const {
    QString text;
    for (const transcript_line& line : lines)
        text += (line.is_command ? QStringLiteral("> ") : QString()) + line.text + u'\n';
    return text;
}

} // namespace brivant
