#pragma once

#include <QByteArrayView>
#include <QString>
#include <initializer_list>

namespace brivant {

// Free-form diagnostic lines that name the method. They go to "console.log" in the Documents folder once
// redirected there, else to standard error. Qt's own messages go the same way. While an event loop runs,
// lines reach the file within about a second; Qt's warnings take those before them along at once.
void console_log(const QString& line);
// The same for a line in pieces that are UTF-8 already, as those of every command and reply are.
void console_log_utf8(std::initializer_list<QByteArrayView> pieces);

// Writes the lines that are still held back. Done by itself when the program ends in order.
void flush_console_log();

// Appends from now on to `file`. One that has grown past 8 MiB is first set aside as "<file>.1", so that a
// program left in a car for weeks does not fill the disk. False when the file cannot be opened; logging
// then goes on where it went before.
bool redirect_console_log(const QString& file);

// Discards lines until redirected (tests, and the terminal program before it knows its profile).
void silence_console_log();

} // namespace brivant
