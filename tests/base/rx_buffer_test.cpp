#include "base/rx_buffer.h"

#include <gtest/gtest.h>

namespace brivant {

TEST(rx_buffer, is_bounded_and_tells_that_it_was_cut) {
    rx_buffer buffer;
    const QByteArray line = "7E8 21 00 00 00 00 00 00 00\r"; // 28 bytes
    QByteArray sent;
    for (int i = 0; i < 40; ++i) {
        buffer.append(line);
        sent += line;
    }
    EXPECT_EQ(buffer.text(), sent);
    EXPECT_FALSE(buffer.is_cut());

    buffer.append(QByteArray(rx_buffer::limit - buffer.size(), '0'));
    EXPECT_FALSE(buffer.is_cut());
    for (const QByteArray& more : {QByteArray("1"), line}) {
        buffer.append(more);
        EXPECT_TRUE(buffer.is_cut());
        EXPECT_EQ(buffer.size(), rx_buffer::limit);
    }

    buffer.clear();
    EXPECT_TRUE(buffer.is_empty());
    EXPECT_FALSE(buffer.is_cut());
    EXPECT_EQ(buffer.text(), QByteArray());
}

} // namespace brivant
