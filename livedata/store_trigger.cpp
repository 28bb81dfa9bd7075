#include "livedata/store_trigger.h"

#include <QRegularExpression>

namespace brivant {

std::optional<pid_limit> pid_limit_of(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("^\\s*([0-9A-Fa-f]{2})\\s*([<>])\\s*(-?\\d{1,9}(?:\\.\\d{1,6})?)\\s*$"));
    const auto found = form.match(text);
    if (!found.hasMatch())
        return std::nullopt;
    return pid_limit{found.captured(1).toUpper(), found.captured(2) == QLatin1String(">"),
                     found.captured(3).toDouble()};
}

QString text_of(const pid_limit& limit) {
    return limit.pid + (limit.is_above ? u'>' : u'<') + QString::number(limit.value, 'g', 12);
}

} // namespace brivant
