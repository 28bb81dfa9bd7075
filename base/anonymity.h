#pragma once

#include <QByteArrayView>
#include <QString>

namespace brivant {

// Whether what goes to others, and into the console log, tells which car it is about: with anonymity on, of a
// vehicle identification number (VIN) only the maker's three characters are left. What is stored, and what
// the window shows, stays as it is.

void set_anonymous(bool on);
bool is_anonymous();

// The text without identification numbers, while anonymity is on.
QString without_vin(const QString& text);
// The same for a text that may hold raw replies, line by line: of those that hold the number, no digit is
// left.
QString for_others(const QString& text);

// The command that is in flight from now on: the console log hides its reply where that holds the number.
void note_command(QByteArrayView command);
// A line of the console log.
QString for_console_log(const QString& line);

} // namespace brivant
