#include "obd/standard_reading/pid_values.h"

#include <QMap>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

// A number and the unit behind it, as a shown text has them.
struct shown_number {
    double value = 0;
    QString unit;
};

// One spelling for a unit: without blanks, quotes and slashes at its ends, in lower case.
QString plain_unit(const QString& unit) {
    static const QMap<QString, QString> same = {
        {QStringLiteral("kppa"), QStringLiteral("kpa")}, {QStringLiteral("gm/s"), QStringLiteral("g/s")},
        {QStringLiteral("kms"), QStringLiteral("km")},   {QStringLiteral("mls"), QStringLiteral("mi")},
        {QStringLiteral("°"), QStringLiteral("deg")},    {QStringLiteral("°c"), QStringLiteral("c")},
        {QStringLiteral("°f"), QStringLiteral("f")},     {QStringLiteral("hours"), QStringLiteral("h")},
        {QStringLiteral("hrs"), QStringLiteral("h")},    {QStringLiteral("mins"), QStringLiteral("min")},
        {QStringLiteral("secs"), QStringLiteral("s")}};
    QString plain = unit.toLower().remove(u'\'').remove(u' ');
    while (plain.startsWith(u'/') || plain.startsWith(u','))
        plain.remove(0, 1);
    while (plain.endsWith(u'/') || plain.endsWith(u','))
        plain.chop(1);
    return same.value(plain, plain);
}

QList<shown_number> numbers_of(const QString& shown) {
    QList<shown_number> numbers;
    for (const QString& word : shown.split(u' ', Qt::SkipEmptyParts)) {
        bool is_number = false;
        const double value = word.toDouble(&is_number);
        if (is_number)
            numbers.append(shown_number{value, QString()});
        else if (!numbers.isEmpty())
            numbers.last().unit += word;
    }
    for (shown_number& number : numbers)
        number.unit = plain_unit(number.unit);
    return numbers;
}

double seconds_in(const QString& unit) {
    return unit == QLatin1String("s")      ? 1
           : unit == QLatin1String("min")  ? 60
           : unit == QLatin1String("h")    ? 3600
           : unit == QLatin1String("days") ? 86400
                                           : 0;
}

// "2 days 3 'hrs' 5 'mins'" as seconds.
QList<shown_number> time_added_up(const QList<shown_number>& numbers) {
    double seconds = 0;
    for (const shown_number& number : numbers) {
        if (seconds_in(number.unit) == 0)
            return numbers;
        seconds += number.value * seconds_in(number.unit);
    }
    return numbers.isEmpty() ? numbers : QList<shown_number>{{seconds, QStringLiteral("s")}};
}

// A reply that was not translated at all.
bool is_raw(const QString& shown) {
    return shown.startsWith(u'4') && std::all_of(shown.begin(), shown.end(), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F');
           });
}

bool nearly(double a, double b, int decimals) {
    constexpr double conversions = 0.01;
    const double rounding = 0.6 * std::pow(10.0, -std::min(decimals, 2));
    return std::abs(a - b) <= std::max(rounding, conversions * std::abs(b));
}

} // namespace

QString pid_value_text(const pid_value& value) {
    QStringList texts;
    for (const quantity& q : value.quantities) {
        const QString number = QString::number(q.value, 'f', q.decimals);
        texts.append((q.name.isEmpty() ? QString() : q.name + u' ') + number +
                     (q.unit.isEmpty() ? QString() : u' ' + q.unit));
    }
    texts.append(value.states);
    return texts.isEmpty() ? QStringLiteral("(%1)").arg(value.absent) : texts.join(QLatin1String(", "));
}

bool says_the_same(const QString& shown, const pid_value& standard) {
    const QList<shown_number> numbers = numbers_of(shown);
    if (standard.quantities.isEmpty()) {
        const bool is_word = shown != not_available && shown != QLatin1String("Invalid") &&
                             shown != QLatin1String("Reserved") && !is_raw(shown);
        return standard.states.isEmpty() ? shown == not_available || shown == no_reply : is_word;
    }
    QList<shown_number> wanted;
    for (const quantity& q : standard.quantities)
        wanted.append({q.value, plain_unit(q.unit)});
    const QList<shown_number> have = time_added_up(numbers);
    wanted = time_added_up(wanted);
    if (have.size() != wanted.size())
        return false;
    for (qsizetype i = 0; i < have.size(); ++i)
        if (have[i].unit != wanted[i].unit ||
            !nearly(have[i].value, wanted[i].value, standard.quantities.value(i).decimals))
            return false;
    return true;
}

} // namespace brivant
