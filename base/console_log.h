#pragma once

#include <QString>

// Free-form diagnostic lines that name the method. They go to "console.log" in the Documents folder once
// redirected there, else to standard error. Qt's own messages go the same way.
void console_log(const QString& line);

// Appends from now on to `file`. One that has grown past 8 MiB is first set aside as "<file>.1", so that a
// program left in a car for weeks does not fill the disk. False when the file cannot be opened; logging
// then goes on where it went before.
bool redirect_console_log(const QString& file);

// Discards lines until redirected (tests, and the terminal program before it knows its profile).
void silence_console_log();
