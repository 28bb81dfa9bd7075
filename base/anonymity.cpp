#include "base/anonymity.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <array>

namespace brivant {

namespace {

// The services 09 of SAE J1979, 1A of ISO 14230 and 22 of ISO 14229, in a request and in its reply.
constexpr std::array requests{"0902", "1A90", "22F190"};
const QRegularExpression reply_with_vin(QStringLiteral("49 ?02|5A ?90|62 ?F1 ?90"));
const QRegularExpression hex_line(QStringLiteral("^[0-9A-F: ]+$"));
const QRegularExpression hex_digits(QStringLiteral("[0-9A-F]*[0-9][0-9A-F]*|\\b[A-F]{2}\\b"));

// Seventeen of its characters, with a digit, and a letter that is no hexadecimal digit: a long reply has
// none.
const QRegularExpression
    whole_vin(QStringLiteral("(?<![A-Za-z0-9])(?=[A-Z0-9]{0,16}[G-Z])(?=[A-Z0-9]{0,16}[0-9])"
                             "([A-HJ-NPR-Z0-9]{3})[A-HJ-NPR-Z0-9]{14}(?![A-Za-z0-9])"));
// What is read as one on the older protocols may be shorter; it has its name before it.
const QRegularExpression named_vin(
    QStringLiteral("\\b((?:VIN|vin)\\b[^A-Z0-9\\n]{1,30}[A-Z0-9]{3})[A-Z0-9]{5,14}(?![A-Za-z0-9])"));

bool asked_for = false;
bool reply_holds_vin = false;

QString without_digits(QString line) {
    return line.replace(hex_digits, QStringLiteral("**"));
}

} // namespace

void set_anonymous(bool on) {
    asked_for = on;
}

bool is_anonymous() {
    return asked_for;
}

QString without_vin(const QString& text) {
    if (!asked_for)
        return text;
    QString left = text;
    left.replace(whole_vin, QStringLiteral("\\1**************"));
    return left.replace(named_vin, QStringLiteral("\\1**************"));
}

QString for_others(const QString& text) {
    if (!asked_for)
        return text;
    QStringList lines = text.split(u'\n');
    bool is_raw = false;
    for (QString& line : lines) {
        is_raw = reply_with_vin.match(line).hasMatch() || (is_raw && hex_line.match(line).hasMatch());
        line = is_raw ? without_digits(line) : without_vin(line);
    }
    return lines.join(u'\n');
}

void note_command(QByteArrayView command) {
    if (!asked_for)
        return;
    const QByteArray text = command.toByteArray().toUpper().replace(' ', "");
    reply_holds_vin = std::any_of(requests.begin(), requests.end(),
                                  [&](const char* request) { return text.startsWith(request); });
}

QString for_console_log(const QString& line) {
    if (!asked_for)
        return line;
    return reply_holds_vin || reply_with_vin.match(line).hasMatch() ? without_digits(line)
                                                                    : without_vin(line);
}

} // namespace brivant
