#include "diagnostics/second_tests.h"

#include "diagnostics/mode6_records.h"
#include "obd/standard_reading/test_results.h"

#include <QMap>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

QString hex(int byte) {
    return QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
}

QString number(double value, int decimals) {
    constexpr int as_the_program = 3;
    return QString::number(value, 'f', std::max(decimals, as_the_program));
}

test_row row_of(const ecu_test& test, int index, const text_resources& lists) {
    test_row row;
    row.index = index;
    row.is_can = test.scaling >= 0;
    if (row.is_can) {
        row.obdmid = hex(test.monitor);
        row.tid = hex(test.test);
        row.unit = test.unit;
        row.minimum = number(test.minimum.value_or(0), test.decimals);
        row.value = number(test.value, test.decimals);
        row.maximum = number(test.maximum.value_or(0), test.decimals);
        row.passed = test.passed();
        name_the_test(row, lists);
        return row;
    }
    row.tid = hex(test.monitor);
    row.component = hex(test.test);
    row.limit_is_maximum = !test.minimum.has_value();
    const double limit = row.limit_is_maximum ? test.maximum.value_or(0) : *test.minimum;
    row.value = QString::number(static_cast<unsigned>(test.value));
    row.minimum = row.maximum = QString::number(static_cast<unsigned>(limit));
    row.passed = row.limit_is_maximum ? test.value <= limit : test.value >= limit;
    return row;
}

QString said_by(const test_row& row) {
    const QString unit = row.unit.trimmed();
    const QString limits =
        row.is_can ? QStringLiteral("%1 to %2").arg(row.minimum, row.maximum)
                   : QStringLiteral("%1 %2").arg(row.limit_is_maximum ? "max" : "min", row.minimum);
    return QStringLiteral("%1 (%2), %3")
        .arg(unit.isEmpty() ? row.value : row.value + u' ' + unit, limits,
             row.passed ? QStringLiteral("Passed") : QStringLiteral("FAILED"));
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
bool say_the_same(const test_row& own, const test_row& standard) {
    static constexpr double rounding = 0.0006;
    static constexpr double scaling = 0.002; // a factor with fewer digits
    const auto near = [](const QString& own_number, const QString& number) {
        const double a = own_number.toDouble();
        const double b = number.toDouble();
        return std::abs(a - b) <= std::max(rounding, scaling * std::abs(b));
    };
    return own.passed == standard.passed && plain_unit(own.unit) == plain_unit(standard.unit) &&
           own.is_can == standard.is_can && own.limit_is_maximum == standard.limit_is_maximum &&
           near(own.value, standard.value) && near(own.minimum, standard.minimum) &&
           near(own.maximum, standard.maximum);
}

bool is_same_test(const test_row& own, const ecu_test& test) {
    return own.tid == hex(own.is_can ? test.test : test.monitor) &&
           (own.is_can ? own.obdmid == hex(test.monitor) : own.component == hex(test.test));
}

} // namespace

second_tests read_tests_again(const answer& kept, int index, const text_resources& lists) {
    ecu_tests read = read_tests(kept.what_came.raw());
    const int protocol = kept.what_came.protocol();
    read.tests.removeIf([&](const ecu_test& test) {
        return !kept.ecu.isEmpty() && ecu_identity(test.ecu, protocol) != ecu_identity(kept.ecu, protocol);
    });
    second_tests result;
    for (const test_row& row : rows_of<test_row>(kept.rows)) {
        const auto found = std::find_if(read.tests.begin(), read.tests.end(),
                                        [&](const ecu_test& test) { return is_same_test(row, test); });
        second_test pair{result.pairs.size(), false, true, {}, QStringLiteral("no value"), said_by(row)};
        if (found != read.tests.end()) {
            pair.row = row_of(*found, row.index, lists);
            pair.same = say_the_same(row, *pair.row);
            pair.other_verdict = row.passed != pair.row->passed;
            pair.said = said_by(*pair.row);
            read.tests.erase(found);
        } else if (!read.fault.isEmpty()) {
            pair.said = QStringLiteral("(%1)").arg(read.fault);
        }
        result.pairs += pair;
    }
    // Records that the program reads under another name stand with their own.
    for (const ecu_test& test : read.tests) {
        const test_row row = row_of(test, index, lists);
        result.pairs += {-1, false, true, row, said_by(row), {}};
    }
    return result;
}

} // namespace brivant
