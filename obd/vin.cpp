#include "obd/vin.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/ecu_names.h"
#include "obd/number_text.h"
#include "obd/reply.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype most_characters = 39;
constexpr qsizetype answer_digits = 40; // of a VIN of 17 characters on CAN
constexpr qsizetype vin_messages = 5;
constexpr QLatin1String info_answer("4902");

// Unprogrammed memory (00, FF) and what is left of an error word do not make a VIN.
QString readable(const QString& text) {
    const bool is_readable =
        std::any_of(text.begin(), text.end(), [](QChar c) { return c > u' ' && c < u'\x7F'; });
    return is_readable ? text : not_available;
}

// The data of an answer on CAN.
QString vin_of_data(QStringView data) {
    return readable(pullAsciiStr(data.mid(6))); // mode, info type and item count come first
}

// The messages of the older protocols.
QString vin_of_lines(const QStringList& lines) {
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
    return readable(vin);
}

// The five messages in which the older protocols give a VIN, each "4902", its number from 01 and four bytes.
bool is_whole_legacy_vin(const QStringList& messages) {
    for (qsizetype i = 0; i < messages.size(); ++i) {
        const QString& message = messages[i];
        if (message.size() < 14 || !is_hex(message) || !message.startsWith(info_answer) ||
            hex_byte(message, 4) != i + 1)
            return false;
    }
    return messages.size() == vin_messages;
}

QString vin_without_headers(const reply& answer) {
    if (is_whole_legacy_vin(answer.lines()))
        return vin_of_lines(answer.lines());
    const bool is_whole = !answer.data_without_headers(info_answer).isEmpty();
    return is_whole ? work_out_vin(answer.text()) : not_available;
}

QString vin_of_ecu(const ecu_said& ecu) {
    if (!is_can(ecu.protocol))
        return is_whole_legacy_vin(ecu.bodies) ? vin_of_lines(ecu.bodies) : not_available;
    return ecu.is_whole() ? vin_of_data(QStringView(ecu.data).left(answer_digits)) : not_available;
}

} // namespace

QString vin_of(const reply& answer) {
    if (answer.holds_nothing())
        return not_available;
    if (!answer.headers_shown())
        return vin_without_headers(answer);
    const auto tells = [](const ecu_said& ecu) { return ecu.data.startsWith(info_answer); };
    const ecu_said* chosen = answer.first(
        [&](const ecu_said& ecu) { return tells(ecu) && isThisEngineHeader(ecu.header, ecu.protocol); });
    if (!chosen)
        chosen = answer.first(tells);
    return chosen ? vin_of_ecu(*chosen) : not_available;
}

QString work_out_vin(const QString& reply) {
    QString text = reply;
    text.remove(QLatin1Char(' '));
    if (text.contains(QLatin1Char(':')))
        return text.contains(QLatin1String("49")) ? vin_of_data(grab_CAN_msg(text)) : not_available;
    return vin_of_lines(text.remove(QLatin1Char('\n')).remove(QLatin1Char('>')).split(QLatin1Char('\r')));
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

} // namespace brivant
