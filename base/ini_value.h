#pragma once

#include <QByteArray>
#include <QVariant>

namespace brivant {

// What stands behind "=" in the INI form of QSettings: a text, or a list of texts where commas stand outside
// quotes.
QVariant ini_value(const QByteArray& written);
// A flag, a number, a text or a list of texts; an empty list stands as an invalid value.
QByteArray as_ini_value(const QVariant& value);

} // namespace brivant
