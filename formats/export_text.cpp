#include "formats/export_text.h"

#include <QDateTime>
#include <QLocale>
#include <cmath>

namespace brivant {

QByteArray number_text(double value) {
    const double size = std::fabs(value);
    const bool is_usual = size == 0 || (size >= 1e-5 && size < 1e15);
    return QByteArray::number(value, is_usual ? 'f' : 'g', QLocale::FloatingPointShortest);
}

QByteArray seconds_text(double ms) {
    return QByteArray::number(ms / 1000, 'f', 6);
}

QString utc_text(const run_head& head, double ms) {
    return QDateTime::fromMSecsSinceEpoch(head.start_ms + std::llround(ms), Qt::UTC)
        .toString(Qt::ISODateWithMs);
}

QString xml_text(const QString& text) {
    QString clean;
    for (const QChar c : text)
        if (c >= u' ' ? c < QChar(0xFFFE) : c == u'\t' || c == u'\n')
            clean += c;
    return clean.toHtmlEscaped();
}

QString about_reading(bool by_standard) {
    return by_standard ? QStringLiteral("values by SAE J1979")
                       : QStringLiteral("values in the program's own reading");
}

QString about_units(unit_system units) {
    return units == unit_system::metric ? QStringLiteral("metric units") : QStringLiteral("imperial units");
}

QStringList about_run(const run_head& head) {
    return {about_program + head.version, about_start + utc_text(head), about_vehicle + head.vehicle,
            about_reading(head.by_standard), about_units(head.units)};
}

} // namespace brivant
