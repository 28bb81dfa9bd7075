#include "diagnostics/mode6_records.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/mode6_scaling.h"
#include "obd/number_text.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr QLatin1String answer_byte("46");
constexpr qsizetype record_digits = 18;
constexpr qsizetype legacy_digits = 16;
constexpr unsigned minimum_bit = 0x80; // of the component byte: the limit is a minimum

QString three_decimals(const QString& scaled) {
    return with_decimals(scaled.section(u' ', 0, 0).toDouble(), 3);
}

// --- CAN ---------------------------------------------------------------------------------------------------

test_row read_record(const QString& digits, int index) {
    const QString uasid = digits.sliced(4, 2);
    test_row row;
    row.index = index;
    row.is_can = true;
    row.obdmid = digits.sliced(0, 2);
    row.tid = digits.sliced(2, 2);
    row.scaled = CAN_scale_and_units(uasid, digits.sliced(6, 4), true);
    row.value = three_decimals(row.scaled);
    row.unit = row.scaled.section(u' ', 1);
    row.minimum = three_decimals(CAN_scale_and_units(uasid, digits.sliced(10, 4), false));
    row.maximum = three_decimals(CAN_scale_and_units(uasid, digits.sliced(14, 4), true));
    // The limits are inclusive, and compared as they are shown.
    const double value = row.value.toDouble();
    row.passed = row.minimum.toDouble() <= value && value <= row.maximum.toDouble();
    return row;
}

QList<test_row> can_rows(const ecu_said& ecu, int index, const text_resources& lists) {
    QList<test_row> rows;
    if (!ecu.data.startsWith(answer_byte))
        return rows; // refused
    const qsizetype end = std::min(ecu.data.size(), ecu.digits_received());
    for (qsizetype at = 2; at + record_digits <= end; at += record_digits) {
        const QString digits = ecu.data.sliced(at, record_digits);
        if (!is_hex_text(digits)) {
            console_log(QStringLiteral("handle a testId::wacked:%1").arg(digits));
            continue;
        }
        rows += read_record(digits, index);
        name_the_test(rows.last(), lists);
    }
    return rows;
}

// --- older protocols ---------------------------------------------------------------------------------------

test_row read_message(const QString& message, qsizetype offset, int index) {
    const QString digits = message.leftJustified(legacy_digits, u'0');
    const unsigned component = convertStr2Byte(digits.mid(offset + 4, 2));
    const unsigned value = convertStr2Byte(digits.mid(offset + 6, 4));
    const unsigned limit = convertStr2Byte(digits.mid(offset + 10, 4));
    test_row row;
    row.index = index;
    row.tid = digits.mid(offset + 2, 2);
    row.component = convertByte2HexStr(component & ~minimum_bit);
    row.value = QString::number(value);
    row.minimum = row.maximum = QString::number(limit);
    row.limit_is_maximum = (component & minimum_bit) == 0;
    row.passed = row.limit_is_maximum ? value <= limit : value >= limit;
    return row;
}

QList<test_row> legacy_rows(QStringList bodies, int index) {
    QList<test_row> rows;
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
            rows += read_message(body, offset, index);
    }
    return rows;
}

} // namespace

QList<test_row> handle_a_mode6_TestID(const ecu_said& ecu, int groupIdx, const text_resources& lists) {
    return is_can(ecu.protocol) ? can_rows(ecu, groupIdx, lists) : legacy_rows(ecu.bodies, groupIdx);
}

void name_the_test(test_row& row, const text_resources& lists) {
    row.monitor = grab_CAN_mode6_OBDMID_TESTID_description(row.obdmid, true, lists);
    row.test = grab_CAN_mode6_OBDMID_TESTID_description(row.tid, false, lists);
}

QString raw_records(const diagnostic_results& results, part which) {
    QString raw;
    for (const answer& one : results.answers.value(which)) {
        QString before = QStringLiteral("|");
        for (const test_row& row : rows_of<test_row>(one.rows)) {
            if (!row.is_can)
                continue;
            raw += before.isEmpty() ? QString() : before + row.obdmid;
            raw += fill(QStringLiteral("_%@~%@"), {row.tid, row.scaled});
            before.clear();
        }
    }
    return raw;
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

} // namespace brivant
