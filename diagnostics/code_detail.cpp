#include "diagnostics/code_detail.h"

#include "diagnostics/tests_of_code.h"

namespace brivant {

namespace {

// What a mechanic looks at first: speed of engine and car, temperature, load, trims, pressure, air, throttle.
const QStringList main_pids{QStringLiteral("0C"), QStringLiteral("0D"), QStringLiteral("05"),
                            QStringLiteral("04"), QStringLiteral("06"), QStringLiteral("07"),
                            QStringLiteral("08"), QStringLiteral("09"), QStringLiteral("0B"),
                            QStringLiteral("10"), QStringLiteral("11")};

QList<code_detail::frame_value> main_values(const QList<noted_row>& frame) {
    QList<code_detail::frame_value> found;
    const QList<value_row> values = rows_of<value_row>(plain(frame));
    for (const QString& pid : main_pids)
        for (const value_row& row : values)
            if (row.pid == pid)
                found += {row.label.trimmed(), row.value};
    return found;
}

} // namespace

QString code_detail::as_text() const {
    QStringList lines{code + QStringLiteral(" - ") + description};
    for (const QString& line : {ecu, kinds, note})
        if (!line.isEmpty())
            lines += line;
    for (const frame_value& value : frame)
        lines += value.label + QStringLiteral(": ") + value.value;
    if (!tests.isEmpty())
        lines += tests;
    return lines.join(u'\n');
}

code_detail detail_of(const listed_code& row, const QString& description, const QString& ecu_name,
                      const QList<noted_row>& frame, const QList<noted_row>& tests) {
    code_detail detail{row.code, ecu_name, description.trimmed(), row.kinds(), row.note, {}, {}};
    if (row.froze_the_frame)
        detail.frame = main_values(frame);
    detail.tests = in_words(tests_of_the_system(row.code, tests));
    return detail;
}

} // namespace brivant
