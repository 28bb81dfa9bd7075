#pragma once

#include <QLocale>

namespace brivant {

// "1,000,000"
inline QString grouped(qint64 number) {
    return QLocale(QLocale::English).toString(number);
}

// "00:03:12"
inline QString hours_minutes_seconds(qint64 seconds) {
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600, 2, 10, QLatin1Char('0'))
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace brivant
