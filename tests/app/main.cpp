#include "base/console_log.h"

#include <QApplication>
#include <gtest/gtest.h>

using namespace brivant;

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"); // whatever Bluetooth there is stays alone
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    silence_console_log();
    return RUN_ALL_TESTS();
}
