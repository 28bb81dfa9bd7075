#include "diagnostics/mode6_records.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/mode6_scaling.h"
#include "obd/number_text.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace {

constexpr QLatin1String answer_byte("46");
constexpr qsizetype record_digits = 18;
constexpr qsizetype legacy_digits = 16;
constexpr unsigned minimum_bit = 0x80; // of the component byte: the limit is a minimum

QString three_decimals(const QString& scaled) {
    return with_decimals(scaled.section(u' ', 0, 0).toDouble(), 3);
}

// --- CAN ---------------------------------------------------------------------------------------------------

can_test read_record(const QString& digits) {
    can_test record;
    record.obdmid = digits.sliced(0, 2);
    record.tid = digits.sliced(2, 2);
    const QString uasid = digits.sliced(4, 2);
    const QString scaled = CAN_scale_and_units(uasid, digits.sliced(6, 4), true);
    record.value = three_decimals(scaled);
    record.unit = scaled.section(u' ', 1);
    record.minimum = three_decimals(CAN_scale_and_units(uasid, digits.sliced(10, 4), false));
    record.maximum = three_decimals(CAN_scale_and_units(uasid, digits.sliced(14, 4), true));
    // The limits are inclusive, and compared as they are shown.
    const double value = record.value.toDouble();
    record.passed = record.minimum.toDouble() <= value && value <= record.maximum.toDouble();
    return record;
}

mode6_rows can_rows(const ecu_said& ecu, int index, const text_resources& lists) {
    mode6_rows result;
    if (!ecu.data.startsWith(answer_byte))
        return result; // refused
    const qsizetype end = std::min(ecu.data.size(), ecu.digits_received());
    for (qsizetype at = 2; at + record_digits <= end; at += record_digits) {
        const QString digits = ecu.data.sliced(at, record_digits);
        if (!is_hex_text(digits)) {
            console_log(QStringLiteral("handle a testId::wacked:%1").arg(digits));
            continue;
        }
        const can_test record = read_record(digits);
        const QString scaled = CAN_scale_and_units(digits.sliced(4, 2), digits.sliced(6, 4), true);
        const QString format = at == 2 ? QStringLiteral("|%@_%@~%@") : QStringLiteral("_%@~%@");
        result.raw +=
            at == 2 ? fill(format, {record.obdmid, record.tid, scaled}) : fill(format, {record.tid, scaled});
        result.rows += can_test_row(record, index, lists);
    }
    return result;
}

// --- older protocols ---------------------------------------------------------------------------------------

legacy_test read_message(const QString& message, qsizetype offset) {
    const QString digits = message.leftJustified(legacy_digits, u'0');
    const unsigned component = convertStr2Byte(digits.mid(offset + 4, 2));
    return {digits.mid(offset + 2, 2), convertByte2HexStr(component & ~minimum_bit),
            convertStr2Byte(digits.mid(offset + 6, 4)), convertStr2Byte(digits.mid(offset + 10, 4)),
            (component & minimum_bit) != 0};
}

mode6_rows legacy_rows(QStringList bodies, int index) {
    mode6_rows result;
    bodies.removeIf([](const QString& body) { return !body.startsWith(answer_byte); }); // refused
    const bool all_alike = std::all_of(bodies.begin(), bodies.end(), [&](const QString& body) {
        return body.left(4) == bodies.first().left(4);
    });
    // Odd on purpose: where the messages are of several tests, the fields are read one byte further on.
    const qsizetype offset = bodies.size() > 1 && !all_alike ? 2 : 0;
    for (const QString& body : bodies) {
        if (!is_hex_text(body))
            console_log(QStringLiteral("handle a testId::wacked:%1").arg(body));
        else
            result.rows += legacy_test_row(read_message(body, offset), index);
    }
    return result;
}

} // namespace

mode6_rows handle_a_mode6_TestID(const ecu_said& ecu, int groupIdx, const text_resources& lists) {
    return is_can(ecu.protocol) ? can_rows(ecu, groupIdx, lists) : legacy_rows(ecu.bodies, groupIdx);
}

QString can_test_row(const can_test& test, int index, const text_resources& lists) {
    const QString monitor =
        fill(QStringLiteral("%d|%@"),
             {QString::number(index),
              fill(QStringLiteral("OBDMID(%@) - %@"),
                   {test.obdmid, grab_CAN_mode6_OBDMID_TESTID_description(test.obdmid, true, lists)})});
    const QString format = test.unit.isEmpty() ? QStringLiteral("%@|%@ - (%@)%@ |Min(%@) VAL[%@] Max(%@) ")
                                               : QStringLiteral("%@|%@ - (%@)%@|Min(%@) VAL[%@] Max(%@) ");
    const QString name = grab_CAN_mode6_OBDMID_TESTID_description(test.tid, false, lists);
    return fill(format, {monitor, test.unit, test.tid, name, test.minimum, test.value, test.maximum}) +
           (test.passed ? QStringLiteral(" - Passed") : QStringLiteral(" - FAILED")) +
           fill(QStringLiteral("|%@~%@~%@"), {test.minimum, test.value, test.maximum});
}

QString legacy_test_row(const legacy_test& test, int index) {
    const bool failed = test.limit_is_minimum ? test.value < test.limit : test.value > test.limit;
    const bool is_less = test.limit_is_minimum == failed;
    const QString words = QLatin1String(is_less ? "Less than " : "Greater than ") +
                          QLatin1String(test.limit_is_minimum ? "Min" : "Max");
    const QString triple =
        fill(test.limit_is_minimum ? QStringLiteral("%d~%d~min") : QStringLiteral("%d~%d~max"),
             {QString::number(test.limit), QString::number(test.value)});
    return fill(QStringLiteral("%d|Test ID(%@) | CID(%@) |Test val(%d)\n %@(%d)   %@|%@"),
                {QString::number(index), test.tid, test.component, QString::number(test.value), words,
                 QString::number(test.limit), failed ? QStringLiteral("FAILED") : QStringLiteral("Passed"),
                 triple});
}

mode6_row split_mode6_row(const QString& row) {
    const QStringList fields = row.split(u'|');
    mode6_row result;
    result.index = fields.value(0).toInt();
    result.title = fields.value(1).trimmed();
    result.subject = fields.value(2).trimmed();
    result.text = fields.value(3).trimmed();
    result.limits = fields.value(4);
    result.passed = result.text.endsWith(QLatin1String("Passed"));
    const QStringList triple = result.limits.split(u'~');
    result.is_can = triple.value(2) != QLatin1String("max") && triple.value(2) != QLatin1String("min");
    result.limit_is_maximum = triple.value(2) == QLatin1String("max");
    result.minimum = triple.value(0).toDouble();
    result.value = triple.value(1).toDouble();
    result.maximum = result.is_can ? triple.value(2).toDouble() : result.minimum;
    const auto in_brackets = [](const QString& text) { return text.section(u'(', 1).section(u')', 0, 0); };
    if (result.is_can) {
        result.obdmid = in_brackets(result.title);
        result.monitor = result.title.section(QLatin1String(" - "), 1);
        const qsizetype dash = fields.value(2).indexOf(QLatin1String(" - ("));
        result.unit = fields.value(2).left(std::max<qsizetype>(0, dash));
        result.tid = fields.value(2).mid(dash + 4, 2);
        result.test = fields.value(2).mid(dash + 7).trimmed();
    } else {
        result.tid = in_brackets(result.title);
        result.component = in_brackets(result.subject);
    }
    return result;
}

bar_color work_out_bar_color(double value, double max, double min, bool is_CAN, bool non_can_max,
                             bool is_misfire) {
    Q_UNUSED(is_misfire)
    constexpr bar_color red{1, 0, 0, 1};
    constexpr bar_color green{0, 1, 0, 1};
    const bool above = value > max;
    const bool below = min > value;
    if (is_CAN)
        return above || below ? red : green;
    return (non_can_max ? above : below) ? red : green;
}

QString work_out_result_html(const QString& limits, const QString& units, bool isFail) {
    const auto no_decimals = [](const QString& number) {
        return with_decimals(number.toDouble(), 0).rightJustified(2);
    };
    const QStringList triple = limits.split(u'~');
    const QString colour = isFail ? QStringLiteral("red") : QStringLiteral("#3ddf00");
    const QString value = no_decimals(triple.value(1));
    const QString kind = triple.value(2);
    if (kind == QLatin1String("max") || kind == QLatin1String("min")) {
        const bool is_maximum = kind == QLatin1String("max");
        const QString relation = is_maximum == isFail ? QStringLiteral("&gt;") : QStringLiteral("&lt;");
        return fill(localised(QStringLiteral("BV_MODE6_RESULT")),
                    {colour, value, QString(),
                     fill(QStringLiteral("%@  %@(%@)"), {relation, triple.value(0), kind}), QString()});
    }
    return fill(localised(QStringLiteral("BV_MODE6_RESULT")),
                {colour, value, QStringLiteral("Max: ") + no_decimals(kind), units.toHtmlEscaped(),
                 QStringLiteral("Min: ") + no_decimals(triple.value(0))});
}
