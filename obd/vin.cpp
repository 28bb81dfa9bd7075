#include "obd/vin.h"

#include "base/console_log.h"
#include "base/shared_types.h"
#include "base/string_table.h"
#include "obd/number_text.h"
#include "obd/obd_messages.h"

#include <algorithm>

namespace {

constexpr qsizetype most_characters = 39;

// Unprogrammed memory (00, FF) and what is left of an error word do not make a VIN.
bool is_readable(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c > u' ' && c < u'\x7F'; });
}

QString vin_of_frames(const QString& reply) {
    if (!reply.contains(QLatin1String("49")))
        return {};
    // Mode, info type and item count come first.
    return pullAsciiStr(QStringView(grab_CAN_msg(reply)).mid(6));
}

QString vin_of_lines(QString reply) {
    const QStringList lines =
        reply.remove(QLatin1Char('\n')).remove(QLatin1Char('>')).split(QLatin1Char('\r'));
    QString vin;
    const auto append = [&vin](const QString& line, qsizetype at) {
        const int code = hex_byte(line, at);
        if (code > 0 && vin.size() < most_characters)
            vin += QChar(code);
    };
    // Odd on purpose: line 0 gives its last character twice, and line 1 is skipped.
    append(lines[0], 12);
    for (qsizetype i = 0; i < lines.size() && !lines[i].isEmpty(); i += i == 0 ? 2 : 1)
        for (const qsizetype at : {6, 8, 10, 12})
            append(lines[i], at);
    return vin;
}

} // namespace

QString work_out_vin(const QString& reply) {
    QString text = reply;
    text.remove(QLatin1Char(' '));
    const QString vin = text.contains(QLatin1Char(':')) ? vin_of_frames(text) : vin_of_lines(text);
    return is_readable(vin) ? vin : not_available;
}

QString pullAsciiStr(QStringView hex) {
    QString characters;
    for (qsizetype at = 0; at + 2 <= hex.size() && characters.size() < most_characters; at += 2) {
        const int code = hex_byte(hex, at);
        if (code > 0)
            characters += QChar(code);
        else if (code < 0)
            console_log(fill(QStringLiteral("pullAsciiStr::%@"), {hex.sliced(at, 2).toString()}));
    }
    return characters;
}
