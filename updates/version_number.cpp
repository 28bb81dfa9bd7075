#include "updates/version_number.h"

#include <QRegularExpression>

std::optional<version_number> version_number::of(const QString& text) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[0-9]{1,9}(\\.[0-9]{1,9}){0,3}")));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    version_number number;
    number.written = text;
    for (const QString& part : text.split(u'.'))
        number.parts += part.toInt();
    return number;
}

std::strong_ordering version_number::operator<=>(const version_number& other) const {
    for (qsizetype i = 0; i < std::max(parts.size(), other.parts.size()); ++i) {
        if (const auto order = parts.value(i) <=> other.parts.value(i); order != 0)
            return order;
    }
    return std::strong_ordering::equal;
}
