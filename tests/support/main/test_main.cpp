#include <QCoreApplication>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>

// An application takes the locale of its surroundings, as the programs do.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (qEnvironmentVariableIsSet("BV_DECIMAL_COMMA") &&
        std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
        std::fputs("The locale with a decimal comma is not in force.\n", stderr);
        return 1;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
