#include "base/ini_value.h"

#include <QStringList>
#include <algorithm>
#include <cctype>

namespace brivant {

namespace {

const QString escape_letters = QStringLiteral("abfnrtv\"?'\\");
const QString what_they_mean = QStringLiteral("\a\b\f\n\r\t\v\"?'\\");

class written_value {
public:
    explicit written_value(const QByteArray& bytes) : text(QString::fromUtf8(bytes)) {
        while (at < text.size() && (is_quoted || text.at(at) != u';'))
            take(text.at(at++));
        end_item();
    }
    QStringList items;

private:
    void take(QChar c) {
        if (c == u'"') {
            is_quoted = !is_quoted;
            kept = item.size();
        } else if (c == u'\\') {
            take_escape();
            kept = item.size();
        } else if (c == u',' && !is_quoted) {
            end_item();
        } else if (is_quoted || !c.isSpace() || !item.isEmpty()) {
            item += c;
            kept = is_quoted || !c.isSpace() ? item.size() : kept;
        }
    }
    void take_escape() {
        const QChar c = at < text.size() ? text.at(at++) : QChar();
        const qsizetype letter = escape_letters.indexOf(c);
        if (letter >= 0)
            item += what_they_mean.at(letter);
        else if (c == u'x')
            take_code(16);
        else if (c >= u'0' && c <= u'7' && at-- > 0)
            take_code(8);
        else if (c == u'\r' && at < text.size() && text.at(at) == u'\n')
            ++at; // the line goes on
    }
    void take_code(int base) {
        uint code = 0;
        bool is_digit = true;
        for (; at < text.size(); ++at) {
            const uint digit = QString(text.at(at)).toUInt(&is_digit, base);
            if (!is_digit)
                break;
            code = code * static_cast<uint>(base) + digit;
        }
        item += QChar(static_cast<char16_t>(code));
    }
    void end_item() {
        items += item.left(kept);
        item.clear();
        kept = 0;
    }

    const QString text;
    qsizetype at = 0;
    bool is_quoted = false;
    QString item;
    qsizetype kept = 0; // of the item: what is behind it are blanks
};

QByteArray escaped(QString text) {
    if (text.startsWith(u'@')) // else it would stand for a value of another kind
        text.prepend(u'@');
    QByteArray escaped;
    bool after_code = false; // whose digits would go on
    for (const char32_t c : text.toUcs4()) {
        const bool is_digit = c < 0x80 && std::isxdigit(static_cast<unsigned char>(c));
        if (c < 0x20 || c == 0x7F || (after_code && is_digit)) {
            escaped += "\\x" + QByteArray::number(static_cast<uint>(c), 16);
            after_code = true;
            continue;
        }
        after_code = false;
        if (c == U'"' || c == U'\\')
            escaped += '\\';
        escaped += QString::fromUcs4(&c, 1).toUtf8();
    }
    const bool needs_quotes =
        text.startsWith(u' ') || text.endsWith(u' ') ||
        std::any_of(text.begin(), text.end(), [](QChar c) { return c == u';' || c == u',' || c == u'='; });
    return needs_quotes ? '"' + escaped + '"' : escaped;
}

} // namespace

QVariant ini_value(const QByteArray& written) {
    QStringList texts = written_value(written).items;
    if (texts == QStringList(QStringLiteral("@Invalid()")))
        return {};
    for (QString& text : texts)
        text.remove(0, text.startsWith(QLatin1String("@@")) ? 1 : 0);
    return texts.size() == 1 ? QVariant(texts.first()) : QVariant(texts);
}

QByteArray as_ini_value(const QVariant& value) {
    if (value.typeId() != QMetaType::QStringList)
        return value.isValid() ? escaped(value.toString()) : QByteArray("@Invalid()");
    QByteArrayList items;
    for (const QString& item : value.toStringList())
        items += escaped(item);
    return items.isEmpty() ? QByteArray("@Invalid()") : items.join(", ");
}

} // namespace brivant
