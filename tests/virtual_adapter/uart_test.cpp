#include "tools/virtual_adapter/uart.h"

#include <gtest/gtest.h>

using virtual_adapter::heard_at;

TEST(uart, hears_something_else_at_another_speed) {
    EXPECT_EQ(heard_at(38400, "41 00\r>", 38400), "41 00\r>");
    EXPECT_EQ(heard_at(38400, "41 00\r>", 38800), "41 00\r>"); // one per cent is no other speed
    // At twice the speed each bit is two: the start bit is one and the lowest of the byte, and where nine are
    // low none is a stop bit.
    EXPECT_EQ(heard_at(19200, "\xFF\xFF", 9600), "\xFE\xFE");
    EXPECT_EQ(heard_at(19200, std::string(1, '\0'), 9600), "");
    for (const int other : {9600, 19200, 57600, 115200, 230400, 500000})
        EXPECT_NE(heard_at(other, "\x7F\x7F\r?\r\r>", 38400), "\x7F\x7F\r?\r\r>") << other;
    EXPECT_EQ(heard_at(0, "U", 38400), "");
    EXPECT_EQ(heard_at(38400, "U", 0), "");
}
