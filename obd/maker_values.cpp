#include "obd/maker_values.h"

#include "base/string_table.h"
#include "base/text_resources.h"
#include "obd/number_text.h"
#include "obd/vin.h"

namespace brivant {

namespace {

QString temperature(int celsius, unit_system units) {
    return units == unit_system::metric ? with_decimals(celsius, 0) + QStringLiteral(".0 ° C")
                                        : with_decimals(celsius * 1.8 + 32, 2) + QStringLiteral(" ° F");
}

QString weight(int A, unit_system units) {
    const double kilograms = A / 200.0;
    return units == unit_system::metric ? with_decimals(kilograms, 3) + QStringLiteral(" Kg ")
                                        : with_decimals(kilograms * 2.2, 3) + QStringLiteral(" lb");
}

// The emission level, and the raw text that follows it.
QString emission_level(const QString& text) {
    const QString code = text.mid(6, 2).toUpper();
    const QString level = code == QLatin1String("B2")   ? QStringLiteral("Euro5")
                          : code == QLatin1String("B3") ? QStringLiteral("Euro4")
                                                        : QStringLiteral("-");
    return fill(QStringLiteral("%@ %@"), {level, text.mid(8, 24)});
}

// Which engine computer it is: each line of the list is two hex digits, a separator and a name.
QString engine_computer(const QString& text, const text_resources& lists) {
    const QString key = text.mid(10, 2);
    const auto computers =
        lists.get_array_from_resource(QStringLiteral("SUBARU_SSMID"), QStringLiteral("txt"));
    if (!computers || key.size() < 2)
        return not_available;
    for (const QString& line : *computers)
        if (line.startsWith(key))
            return line.mid(3);
    return not_available;
}

int identifier_of(const QString& text) {
    const int high = hex_byte(text, 2);
    const int low = hex_byte(text, 4);
    return high < 0 || low < 0 ? -1 : high * 256 + low;
}

} // namespace

QString translateResponse_subaru(const QString& reply, unit_system units, const text_resources& lists) {
    QString text = reply;
    text.remove(QLatin1Char(' ')).remove(QLatin1Char('>'));
    text = text.trimmed();
    if (text.size() < 7)
        return no_reply;
    const int A = hex_byte(text, 6);
    const auto of_A = [A](const QString& value) { return A < 0 ? not_available : value; };
    // clang-format off
    switch (identifier_of(text)) {
    case 0x0005:                                         return of_A(temperature(A - 40, units));
    case 0x003E: case 0x114B: case 0x114C:               return of_A(temperature(A * 5 - 40, units));
    case 0x102A: case 0x102B: case 0x102C: case 0x102D:  return emission_level(text);
    case 0x114D: case 0x114E:                            return of_A(with_decimals(A, 0) + ".0 %");
    case 0x1189:                                         return of_A(weight(A, units));
    case 0x124F: case 0x125B:                            return of_A(A == 0 ? "OFF" : "ON");
    case 0xF100:                                         return engine_computer(text, lists);
    case 0xF182:                                         return text.mid(6);
    case 0xF197:                                         return pullAsciiStr(QStringView(text).mid(6));
    default:                                             return no_reply;
    }
    // clang-format on
}

} // namespace brivant
