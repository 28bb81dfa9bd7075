#include "tests/support/decimal_comma.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

using namespace brivant;

// As the other test main, for tests that draw: text needs an application that knows fonts, but no screen.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ask_for_the_wanted_locale();
    QGuiApplication application(argc, argv);
    if (!has_the_wanted_locale())
        return 1;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
