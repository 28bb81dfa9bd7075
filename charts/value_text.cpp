#include "charts/value_text.h"

#include "base/shared_types.h"
#include "charts/axis_values.h"

#include <QLocale>
#include <QRegularExpression>
#include <cmath>

namespace brivant {

QString in_locale(const QString& number) {
    return QString(number).replace(u'.', QLocale().decimalPoint());
}

value_text shown_value(const QString& text, double value, const QString& unit) {
    static const QRegularExpression after_words(QStringLiteral("^[A-Za-z]+ (?=-?[0-9])"));
    const value_text none{QStringLiteral("\u2013"), unit};
    QString told = text.trimmed();
    if (told == no_reply)
        return none;
    if (told.isEmpty())
        return std::isnan(value) ? none : value_text{short_number(value), unit};
    told.remove(after_words);
    const QString number = told.section(u' ', 0, 0);
    bool is_number = false;
    const double read = number.toDouble(&is_number);
    if (!is_number)
        return {text.trimmed(), QString()};
    if (!std::isfinite(read))
        return none; // the economy of a standing engine
    return {in_locale(number), told.contains(u' ') ? told.section(u' ', 1).trimmed() : unit};
}

} // namespace brivant
