#include "diagnostics/result_rows.h"

#include "base/string_table.h"

namespace brivant {

namespace {

QString text_of(part where, const value_row& row) {
    const QString& label = row.label;
    if (where == part::freeze)
        return row.more.isEmpty() ? fill(QStringLiteral("%@: %@"), {label, row.value})
                                  : fill(QStringLiteral("%@: %@|%@"), {label, row.value, row.more});
    if (where == part::extras)
        return fill(QStringLiteral("%@:| %@|"), {label, row.value});
    if (!row.pid.isEmpty())
        return fill(QStringLiteral("%@|%@|%@"), {row.pid, label, row.value});
    return row.more.isEmpty() ? fill(QStringLiteral(" %@: %@"), {label, row.value})
                              : fill(QStringLiteral("%@ : %@| %@"), {label, row.value, row.more});
}

QString text_of(const ecu_row& row) {
    // Every heading but the first has a blank before its closing dashes.
    const QString format = row.is_first ? QStringLiteral(" --- ECU(%@) %@--- |has %d available PIDs")
                                        : QStringLiteral(" --- ECU(%@) %@ --- |has %d available PIDs");
    return fill(format, {row.header, row.name, QString::number(row.pids)});
}

QString text_of(const test_row& row) {
    return QStringList{QString::number(row.index), row.title(), row.subject(), row.text(), row.limits()}.join(
        u'|');
}

} // namespace

bool test_row::was_not_run() const {
    return value.toDouble() == 0 && minimum.toDouble() == 0 && maximum.toDouble() == 0;
}

QString test_row::title() const {
    return is_can ? fill(QStringLiteral("OBDMID(%@) - %@"), {obdmid, monitor})
                  : fill(QStringLiteral("Test ID(%@) "), {tid});
}

QString test_row::subject() const {
    if (!is_can)
        return fill(QStringLiteral(" CID(%@) "), {component});
    return fill(unit.isEmpty() ? QStringLiteral("%@ - (%@)%@ ") : QStringLiteral("%@ - (%@)%@"),
                {unit, tid, test});
}

QString test_row::text() const {
    if (is_can)
        return fill(QStringLiteral("Min(%@) VAL[%@] Max(%@) "), {minimum, value, maximum}) +
               (passed ? QStringLiteral(" - Passed") : QStringLiteral(" - FAILED"));
    const QString words = QLatin1String(limit_is_maximum == passed ? "Less than " : "Greater than ") +
                          QLatin1String(limit_is_maximum ? "Max" : "Min");
    return fill(QStringLiteral("Test val(%@)\n %@(%@)   %@"),
                {value, words, minimum, passed ? QStringLiteral("Passed") : QStringLiteral("FAILED")});
}

QString test_row::limits() const {
    const QString kind = limit_is_maximum ? QStringLiteral("max") : QStringLiteral("min");
    return fill(QStringLiteral("%@~%@~%@"), {minimum, value, is_can ? maximum : kind});
}

QString row_text(part where, const result_row& row) {
    if (const auto* words = std::get_if<words_row>(&row))
        return words->text;
    if (const auto* code = std::get_if<code_row>(&row))
        return fill(QStringLiteral("%@|%@"), {code->code, code->ecu});
    if (const auto* value = std::get_if<value_row>(&row))
        return text_of(where, *value);
    if (const auto* ecu = std::get_if<ecu_row>(&row))
        return text_of(*ecu);
    return text_of(std::get<test_row>(row));
}

QStringList row_texts(part where, const QList<result_row>& rows) {
    QStringList texts;
    for (const result_row& row : rows)
        texts += row_text(where, row);
    return texts;
}

} // namespace brivant
