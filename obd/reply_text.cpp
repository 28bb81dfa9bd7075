#include "obd/reply_text.h"

#include "obd/number_text.h"
#include <QRegularExpression>
#include <algorithm>
#include <limits>

namespace brivant {

namespace {

constexpr QChar blank = u' ';
constexpr QChar carriage_return = u'\r';
constexpr qsizetype counted_bytes = 300;

bool is_line_end(QChar character) {
    return character == u'\r' || character == u'\n';
}

// Without the characters for which `is_edge` holds at either end.
template <typename Predicate>
QString trimmed(const QString& text, Predicate is_edge) {
    const auto first = std::find_if_not(text.begin(), text.end(), is_edge);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), is_edge).base();
    return QString(first, last - first);
}

// True for a text that normalising would leave as it is; not for every such text.
bool is_normalised(const QString& text) {
    const auto stays = [](QChar c) {
        return (c > u'.' && c != u'>' && c != u'S' && c != u's') || is_line_end(c);
    };
    return !text.isEmpty() && !is_line_end(text.front()) && !is_line_end(text.back()) &&
           std::all_of(text.begin(), text.end(), stays);
}

// As much of the repeated pad text as is missing to the length.
QString padding(qsizetype missing, const QString& pad) {
    if (missing <= 0 || pad.isEmpty())
        return {};
    return pad.repeated(missing / pad.size() + 1).first(missing);
}

} // namespace

QString prepReply(const QString& reply) {
    if (is_normalised(reply))
        return reply;
    constexpr QLatin1String notice("SEARCHING...");
    QString result(reply.size(), Qt::Uninitialized);
    QChar* const begin = result.data();
    QChar* end = begin;
    int dots = 0; // seen and not yet written: three in a row vanish
    const auto write_dots = [&] {
        for (; dots > 0; --dots)
            *end++ = u'.';
    };
    const QStringView text(reply);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if ((c == u'S' || c == u's') && text.sliced(i).startsWith(notice, Qt::CaseInsensitive)) {
            i += notice.size() - 1;
            continue;
        }
        if (c == u'.') {
            dots = (dots + 1) % 3;
            continue;
        }
        write_dots();
        const bool is_leading_line_end = end == begin && is_line_end(c);
        if (c != blank && c != u'>' && !is_leading_line_end)
            *end++ = c;
    }
    write_dots();
    while (end != begin && is_line_end(end[-1]))
        --end;
    result.resize(end - begin);
    return result;
}

QString clean_a_reply(const QString& reply) {
    const QString one_end(carriage_return);
    QString text = reply;
    text.replace(QStringLiteral("\n\r"), one_end);
    text.replace(QStringLiteral("\r\n"), one_end);
    text.replace(QStringLiteral("\r\r"), one_end);
    text.remove(u'>');
    return fix_3dots(text);
}

QString fix_3dots(const QString& text) {
    const qsizetype at = text.indexOf(QStringLiteral("..."));
    return trimmed(at < 0 ? text : text.sliced(at), [](QChar c) { return c == carriage_return; }) +
           carriage_return;
}

QString myTrim(const QString& text) {
    return trimmed(text, [](QChar c) { return c == blank; });
}

QString check_bad_reply(const QString& reply, const QString& /*this_pid*/, const QString& this_bad_char) {
    const QString bare = QString(reply).remove(blank);
    return bare.size() >= 4 && QStringView(bare).sliced(2, 2) == this_bad_char ? reply : QStringLiteral("~");
}

bool is_hex(QStringView text) {
    return is_hex_text(text);
}

unsigned convertStr2Byte(QStringView hex) {
    constexpr quint64 greatest = std::numeric_limits<unsigned>::max();
    quint64 value = 0;
    auto c = std::find_if_not(hex.begin(), hex.end(), [](QChar ch) { return ch == blank; });
    for (; c != hex.end() && hex_digit(*c) >= 0; ++c)
        value = std::min(greatest, value * 16 + static_cast<quint64>(hex_digit(*c)));
    return static_cast<unsigned>(value);
}

QString convertByte2HexStr(unsigned value) {
    return QString::number(value, 16).toUpper().rightJustified(2, u'0');
}

int charToNibble(QChar character) {
    return std::max(0, hex_digit(character));
}

QByteArray fromHexString(QStringView hex) {
    QByteArray bytes;
    if (hex.size() % 2 != 0)
        return bytes;
    bytes.reserve(hex.size() / 2);
    for (qsizetype i = 0; i < hex.size(); i += 2)
        bytes.append(static_cast<char>(charToNibble(hex[i]) * 16 + charToNibble(hex[i + 1])));
    return bytes;
}

bool string_has_Tokens(const QString& text, const QString& these_tokens) {
    for (const QStringView token : QStringView(these_tokens).split(u'|', Qt::SkipEmptyParts)) {
        if (text.contains(token))
            return true;
    }
    return false;
}

int count_items_in_Str(const QString& text, const QString& this_token) {
    const QByteArray bytes = text.first(std::min(text.size(), counted_bytes)).toUtf8();
    int count = 0;
    bool in_piece = false;
    for (const char byte : QByteArrayView(bytes).first(std::min(bytes.size(), counted_bytes))) {
        const bool is_delimiter = this_token.contains(QLatin1Char(byte));
        if (!is_delimiter && !in_piece)
            ++count;
        in_piece = !is_delimiter;
    }
    return count;
}

QStringList Pull_line_into_array(const QString& text, const QString& this_token) {
    return this_token.isEmpty() ? QStringList{text} : text.split(this_token);
}

QString myReplace(const QString& text, const QString& this_str, const QString& with_this_str) {
    const auto is_delimiter = [&this_str](QChar c) { return this_str.contains(c); };
    if (std::none_of(text.begin(), text.end(), is_delimiter))
        return text;
    QString result;
    for (auto at = text.begin(); at != text.end();) {
        const auto first = std::find_if_not(at, text.end(), is_delimiter);
        at = std::find_if(first, text.end(), is_delimiter);
        if (first != at)
            result.append(QStringView(first, at)).append(with_this_str);
    }
    return result;
}

QString padString(const QString& text, QChar this_pad_char, qsizetype this_padded_len, bool onRight) {
    return onRight ? text.leftJustified(this_padded_len, this_pad_char)
                   : text.rightJustified(this_padded_len, this_pad_char);
}

QString padLeft(const QString& text, qsizetype padded_size, const QString& padChar) {
    return padding(padded_size - text.size(), padChar) + text;
}

QString padRight(const QString& text, qsizetype padded_size, const QString& padChar) {
    return text + padding(padded_size - text.size(), padChar);
}

QString replaceStrRegx(const QString& text, const QString& thisRegx, const QString& withThisStr) {
    const QRegularExpression pattern(thisRegx, QRegularExpression::CaseInsensitiveOption);
    return pattern.isValid() ? QString(text).replace(pattern, withThisStr) : text;
}

} // namespace brivant
