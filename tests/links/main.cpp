#include "tests/bluetooth/stand_in.h"

#include <QGuiApplication>

using namespace brivant;

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    private_bus bus; // before anything may use the system's
    if (!bus.start()) {
        std::fputs("No bus for the test: is dbus-daemon installed?\n", stderr);
        return 1;
    }
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
