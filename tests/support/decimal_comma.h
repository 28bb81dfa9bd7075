#pragma once

#include <clocale>
#include <cstdio>
#include <cstring>
#include <qglobal.h>

// False, with a word about it, when the tests should run with a decimal comma and do not.
inline bool has_the_wanted_locale() {
    if (!qEnvironmentVariableIsSet("BV_DECIMAL_COMMA") ||
        std::strcmp(std::localeconv()->decimal_point, ",") == 0)
        return true;
    std::fputs("The locale with a decimal comma is not in force.\n", stderr);
    return false;
}
