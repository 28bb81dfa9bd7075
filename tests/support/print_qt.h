#pragma once

#include <QString>
#include <ostream>

// So that a failed comparison shows the texts and not their characters as numbers.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
