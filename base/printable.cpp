#include "base/printable.h"

#include <QString>
#include <algorithm>

namespace brivant {

namespace {

bool is_plain(char byte, line_feeds feeds) {
    return (byte >= ' ' && byte <= '~') || byte == '\t' || (byte == '\n' && feeds == line_feeds::kept);
}

bool steers(QChar character) {
    const char16_t code = character.unicode();
    return character.category() == QChar::Other_Control || code == 0x200E || code == 0x200F ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

QString escaped(QChar character) {
    if (character == u'\r')
        return QStringLiteral("\\r");
    if (character == u'\n')
        return QStringLiteral("\\n");
    return QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
}

} // namespace

QByteArray printable(QByteArrayView text, line_feeds feeds) {
    if (std::all_of(text.begin(), text.end(), [feeds](char byte) { return is_plain(byte, feeds); }))
        return text.toByteArray();
    QString shown;
    for (const QChar character : QString::fromUtf8(text)) {
        const bool stays = character == u'\t' || (character == u'\n' && feeds == line_feeds::kept);
        if (!stays && steers(character))
            shown += escaped(character);
        else
            shown += character;
    }
    return shown.toUtf8();
}

} // namespace brivant
