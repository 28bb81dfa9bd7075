#pragma once

#include <QByteArray>

#include <clocale>
#include <cstdio>
#include <cstring>

namespace brivant {

// BV_DECIMAL_COMMA names a folder with the locale de_DE.UTF-8, under which the tests are to run. To be called
// before the application is made, which takes the locale of its surroundings.
inline void ask_for_the_wanted_locale() {
    if (!qEnvironmentVariableIsSet("BV_DECIMAL_COMMA"))
        return;
    qputenv("LOCPATH", qgetenv("BV_DECIMAL_COMMA"));
    qputenv("LC_ALL", "de_DE.UTF-8");
}

// False, with a word about it, when it is not in force.
inline bool has_the_wanted_locale() {
    if (!qEnvironmentVariableIsSet("BV_DECIMAL_COMMA") ||
        std::strcmp(std::localeconv()->decimal_point, ",") == 0)
        return true;
    std::fputs("The locale with a decimal comma is not in force.\n", stderr);
    return false;
}

} // namespace brivant
