#include "obd/readiness.h"

#include "base/string_table.h"
#include "base/text_resources.h"
#include "obd/number_text.h"

#include <algorithm>

namespace brivant {

namespace {

const QString complete = QStringLiteral("OK");
const QString not_complete = QStringLiteral("X");
// Spelled so on purpose.
const QString continuous = QStringLiteral("Continous");
const QString non_continuous = QStringLiteral("Non-Continous");

constexpr int continuous_monitors = 3;
constexpr int non_continuous_monitors = 8;
constexpr int compression_ignition_bit = 3;

bool bit(int byte, int index) {
    return (byte >> index & 1) != 0;
}

QString state_of(bool supported, bool pending) {
    return !supported ? not_available : pending ? not_complete : complete;
}

} // namespace

QList<readiness_row> handle_readiness_codes(const QString& flags, const text_resources& lists) {
    QString text = flags;
    text.remove(QLatin1Char(' '));
    if (text.size() < 6 || !is_hex_text(text.first(6)))
        text = QStringLiteral("000000");
    const int B = hex_byte(text, 0);
    const int C = hex_byte(text, 2);
    const int D = hex_byte(text, 4);
    const QString list = bit(B, compression_ignition_bit) ? QStringLiteral("readinessLabelsDiesel")
                                                          : QStringLiteral("readinessLabels");
    const auto label = [&](int index) { return lists.line(list, index).value_or(QString()); };

    QList<readiness_row> rows;
    for (int i = 0; i < continuous_monitors; ++i)
        rows += {state_of(bit(B, i), bit(B, i + 4)), label(i), continuous};
    for (int i = 0; i < non_continuous_monitors; ++i)
        rows += {state_of(bit(C, i), bit(D, i)), label(continuous_monitors + i), non_continuous};
    return rows;
}

QString readiness_summary(const QList<readiness_row>& rows) {
    const auto rows_with = [&rows](const QString& state) {
        return std::count_if(rows.begin(), rows.end(),
                             [&](const readiness_row& row) { return row.state == state; });
    };
    const auto done = rows_with(complete);
    return fill(QStringLiteral("%d<font color=#66ff33>[OK]</font> out of %d [avail] "),
                {QString::number(done), QString::number(done + rows_with(not_complete))});
}

} // namespace brivant
