#include "diagnostics/second_tests.h"

#include "diagnostics/mode6_records.h"
#include "obd/standard_reading/test_results.h"

#include <QMap>
#include <algorithm>
#include <cmath>

namespace {

QString hex(int byte) {
    return QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
}

QString number(double value, int decimals) {
    constexpr int as_the_program = 3;
    return QString::number(value, 'f', std::max(decimals, as_the_program));
}

QString row_of(const ecu_test& test, int index, const text_resources& lists) {
    if (test.scaling < 0) {
        const bool is_minimum = test.minimum.has_value();
        const double limit = is_minimum ? *test.minimum : test.maximum.value_or(0);
        return legacy_test_row({hex(test.monitor), hex(test.test), static_cast<unsigned>(test.value),
                                static_cast<unsigned>(limit), is_minimum},
                               index);
    }
    return can_test_row({hex(test.monitor), hex(test.test), test.unit,
                         number(test.minimum.value_or(0), test.decimals), number(test.value, test.decimals),
                         number(test.maximum.value_or(0), test.decimals), test.passed()},
                        index, lists);
}

QString said_by(const mode6_row& row) {
    const QStringList triple = row.limits.split(u'~');
    const QString value =
        row.unit.trimmed().isEmpty() ? triple.value(1) : triple.value(1) + u' ' + row.unit.trimmed();
    const QString limits = row.is_can ? QStringLiteral("%1 to %2").arg(triple.value(0), triple.value(2))
                                      : QStringLiteral("%1 %2").arg(triple.value(2), triple.value(0));
    return QStringLiteral("%1 (%2), %3")
        .arg(value, limits, row.passed ? QStringLiteral("Passed") : QStringLiteral("FAILED"));
}

// One spelling for the units of either side.
QString plain_unit(const QString& unit) {
    static const QMap<QString, QString> same = {{QStringLiteral("kph"), QStringLiteral("km/h")},
                                                {QStringLiteral("^c"), QStringLiteral("° c")},
                                                {QStringLiteral("deg"), QStringLiteral("°")},
                                                {QStringLiteral("a/f ratio"), QStringLiteral("a/f")},
                                                {QStringLiteral("lt"), QStringLiteral("l")},
                                                {QStringLiteral("true"), QStringLiteral("true/false")},
                                                {QStringLiteral("false"), QStringLiteral("true/false")}};
    const QString plain = unit.trimmed().toLower();
    return same.value(plain, plain);
}

// The same numbers as far as they are shown, and the same verdict.
bool say_the_same(const mode6_row& own, const mode6_row& standard) {
    static constexpr double rounding = 0.0006;
    static constexpr double scaling = 0.002; // a factor with fewer digits
    const auto near = [](double a, double b) {
        return std::abs(a - b) <= std::max(rounding, scaling * std::abs(b));
    };
    return own.passed == standard.passed && plain_unit(own.unit) == plain_unit(standard.unit) &&
           own.is_can == standard.is_can && own.limit_is_maximum == standard.limit_is_maximum &&
           near(own.value, standard.value) && near(own.minimum, standard.minimum) &&
           near(own.maximum, standard.maximum);
}

bool is_same_test(const mode6_row& own, const ecu_test& test) {
    return own.tid == hex(own.is_can ? test.test : test.monitor) &&
           (own.is_can ? own.obdmid == hex(test.monitor) : own.component == hex(test.test));
}

} // namespace

second_tests read_tests_again(const kept_reply& kept, const QStringList& own, int index,
                              const text_resources& lists) {
    ecu_tests read = read_tests(kept.what_came.raw());
    const int protocol = kept.what_came.protocol();
    read.tests.removeIf([&](const ecu_test& test) {
        return !kept.ecu.isEmpty() && ecu_identity(test.ecu, protocol) != ecu_identity(kept.ecu, protocol);
    });
    second_tests result;
    result.fault = read.fault;
    for (qsizetype i = 0; i < own.size(); ++i) {
        const mode6_row row = split_mode6_row(own.at(i));
        const auto found = std::find_if(read.tests.begin(), read.tests.end(),
                                        [&](const ecu_test& test) { return is_same_test(row, test); });
        second_test pair{i, false, {}, QStringLiteral("no value"), said_by(row)};
        if (found != read.tests.end()) {
            pair.row = row_of(*found, row.index, lists);
            const mode6_row standard = split_mode6_row(pair.row);
            pair.same = say_the_same(row, standard);
            pair.said = said_by(standard);
            read.tests.erase(found);
        } else if (!read.fault.isEmpty()) {
            pair.said = QStringLiteral("(%1)").arg(read.fault);
        }
        result.pairs += pair;
    }
    // Records that the program reads under another name stand with their own.
    for (const ecu_test& test : read.tests) {
        const QString row = row_of(test, index, lists);
        result.pairs += {-1, false, row, said_by(split_mode6_row(row)), {}};
    }
    return result;
}
