#include "diagnostics/mode6_records.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/mode6_scaling.h"
#include "obd/number_text.h"
#include "obd/obd_messages.h"
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

// --- CAN -----------------------------------------------------------------------------------------------------

struct can_record {
    QString obdmid;
    QString tid;
    QString scaled; // value and unit
    QString value;
    QString unit;
    QString minimum;
    QString maximum;
};

can_record read_record(const QString& digits) {
    can_record record;
    record.obdmid = digits.sliced(0, 2);
    record.tid = digits.sliced(2, 2);
    const QString uasid = digits.sliced(4, 2);
    record.scaled = CAN_scale_and_units(uasid, digits.sliced(6, 4), true);
    record.value = three_decimals(record.scaled);
    record.unit = record.scaled.section(u' ', 1);
    record.minimum = three_decimals(CAN_scale_and_units(uasid, digits.sliced(10, 4), false));
    record.maximum = three_decimals(CAN_scale_and_units(uasid, digits.sliced(14, 4), true));
    return record;
}

QString can_row(const can_record& record, int index, const text_resources& lists) {
    const QString monitor =
        fill(QStringLiteral("%d|%@"),
             {QString::number(index),
              fill(QStringLiteral("OBDMID(%@) - %@"),
                   {record.obdmid, grab_CAN_mode6_OBDMID_TESTID_description(record.obdmid, true, lists)})});
    const QString format = record.unit.isEmpty() ? QStringLiteral("%@|%@ - (%@)%@ |Min(%@) VAL[%@] Max(%@) ")
                                                 : QStringLiteral("%@|%@ - (%@)%@|Min(%@) VAL[%@] Max(%@) ");
    const QString test = grab_CAN_mode6_OBDMID_TESTID_description(record.tid, false, lists);
    // The limits are inclusive, and compared as they are shown.
    const double value = record.value.toDouble();
    const bool failed = record.minimum.toDouble() > value || value > record.maximum.toDouble();
    return fill(format, {monitor, record.unit, record.tid, test, record.minimum, record.value, record.maximum}) +
           (failed ? QStringLiteral(" - FAILED") : QStringLiteral(" - Passed")) +
           fill(QStringLiteral("|%@~%@~%@"), {record.minimum, record.value, record.maximum});
}

// How many digits of an answer of several frames have come, up to the first frame that is missing. The joined
// data are filled up to the announced length, which would make test results up.
qsizetype digits_received(const QStringList& bodies) {
    qsizetype digits = bodies.first().size() - 4; // the first frame's control bytes
    for (qsizetype frame = 1; frame < bodies.size(); ++frame) {
        if (hex_byte(bodies[frame], 0) != 0x20 + static_cast<int>(frame % 16))
            break;
        digits += bodies[frame].size() - 2;
    }
    return digits;
}

mode6_rows can_rows(const QStringList& bodies, int index, int protocol, const text_resources& lists) {
    mode6_rows result;
    const QString data = l_pullOBDFromSingleGroupedMsg(bodies, protocol);
    if (!data.startsWith(answer_byte))
        return result; // refused
    const bool is_whole_frame = bodies.size() == 1 || !bodies.first().startsWith(u'1');
    const qsizetype end = is_whole_frame ? data.size() : std::min(data.size(), digits_received(bodies));
    for (qsizetype at = 2; at + record_digits <= end; at += record_digits) {
        const QString digits = data.sliced(at, record_digits);
        if (!is_hex_text(digits)) {
            console_log(QStringLiteral("handle a testId::wacked:%1").arg(digits));
            continue;
        }
        const can_record record = read_record(digits);
        const QString format = at == 2 ? QStringLiteral("|%@_%@~%@") : QStringLiteral("_%@~%@");
        result.raw += at == 2 ? fill(format, {record.obdmid, record.tid, record.scaled})
                              : fill(format, {record.tid, record.scaled});
        result.rows += can_row(record, index, lists);
    }
    return result;
}

// --- older protocols -----------------------------------------------------------------------------------------

QString legacy_row(const QString& message, qsizetype offset, int index) {
    const QString digits = message.leftJustified(legacy_digits, u'0');
    const QString tid = digits.mid(offset + 2, 2);
    const unsigned component = convertStr2Byte(digits.mid(offset + 4, 2));
    const unsigned value = convertStr2Byte(digits.mid(offset + 6, 4));
    const unsigned limit = convertStr2Byte(digits.mid(offset + 10, 4));
    const bool is_minimum = (component & minimum_bit) != 0;
    const bool failed = is_minimum ? value < limit : value > limit;

    const bool is_less = is_minimum == failed;
    const QString words = QLatin1String(is_less ? "Less than " : "Greater than ") +
                          QLatin1String(is_minimum ? "Min" : "Max");
    const QString triple =
        fill(is_minimum ? QStringLiteral("%d~%d~min") : QStringLiteral("%d~%d~max"),
             {QString::number(limit), QString::number(value)});
    return fill(QStringLiteral("%d|Test ID(%@) | CID(%@) |Test val(%d)\n %@(%d)   %@|%@"),
                {QString::number(index), tid, convertByte2HexStr(component & ~minimum_bit), QString::number(value),
                 words, QString::number(limit), failed ? QStringLiteral("FAILED") : QStringLiteral("Passed"), triple});
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
            result.rows += legacy_row(body, offset, index);
    }
    return result;
}

} // namespace

mode6_rows handle_a_mode6_TestID(const QStringList& bodies, int groupIdx, int protocol, const text_resources& lists) {
    if (bodies.isEmpty())
        return {};
    return protocol >= 6 ? can_rows(bodies, groupIdx, protocol, lists) : legacy_rows(bodies, groupIdx);
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

bar_color work_out_bar_color(double value, double max, double min, bool is_CAN, bool non_can_max, bool is_misfire) {
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
    const auto no_decimals = [](const QString& number) { return with_decimals(number.toDouble(), 0).rightJustified(2); };
    const QStringList triple = limits.split(u'~');
    const QString colour = isFail ? QStringLiteral("red") : QStringLiteral("#3ddf00");
    const QString value = no_decimals(triple.value(1));
    const QString kind = triple.value(2);
    if (kind == QLatin1String("max") || kind == QLatin1String("min")) {
        const bool is_maximum = kind == QLatin1String("max");
        const QString relation = is_maximum == isFail ? QStringLiteral("&gt;") : QStringLiteral("&lt;");
        return fill(localised(QStringLiteral("BV_MODE6_RESULT")),
                    {colour, value, QString(), fill(QStringLiteral("%@  %@(%@)"), {relation, triple.value(0), kind}),
                     QString()});
    }
    return fill(localised(QStringLiteral("BV_MODE6_RESULT")),
                {colour, value, QStringLiteral("Max: ") + no_decimals(kind), units.toHtmlEscaped(),
                 QStringLiteral("Min: ") + no_decimals(triple.value(0))});
}
