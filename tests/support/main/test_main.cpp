#include "tests/support/decimal_comma.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

using namespace brivant;

// An application takes the locale of its surroundings, as the programs do.
int main(int argc, char** argv) {
    ask_for_the_wanted_locale();
    QCoreApplication application(argc, argv);
    if (!has_the_wanted_locale())
        return 1;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
