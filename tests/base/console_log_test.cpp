#include "base/console_log.h"
#include "base/printable.h"
#include "tests/support/test_file.h"
#include "tests/support/wait_until.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

TEST(console_log, reaches_the_file_by_itself_and_at_a_problem) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("console.log");
    ASSERT_TRUE(redirect_console_log(file));
    console_log("grüße");
    console_log_utf8({"Sending[", QByteArrayView("01 00\r\x1B]0;x\n"), "]"});
    EXPECT_TRUE(wait_until([&] { return bytes_of(file) == "grüße\nSending[01 00\\r\\u001b]0;x\\n]\n"; }));
    console_log("held back");
    flush_console_log();
    EXPECT_TRUE(bytes_of(file).endsWith("held back\n"));
    console_log("before");
    qWarning("a problem");
    EXPECT_TRUE(bytes_of(file).endsWith("before\na problem\n"));

    // Grown too large: what was written stands aside, nothing is lost.
    const QByteArray large(9 * 1024 * 1024, 'x');
    console_log_utf8({large});
    console_log("in the next file");
    silence_console_log();
    EXPECT_TRUE(bytes_of(file + ".1").endsWith(large + '\n'));
    EXPECT_EQ(bytes_of(file), "in the next file\n");
    ASSERT_TRUE(redirect_console_log(file)); // the next start
    console_log("goes on");
    silence_console_log();
    EXPECT_EQ(bytes_of(file), "in the next file\ngoes on\n");
}

TEST(printable, nothing_steers_a_terminal) {
    EXPECT_EQ(printable("a\tb\nc"), "a\tb\nc");
    EXPECT_EQ(printable("grüße °"), "grüße °");
    EXPECT_EQ(printable("\x1B]0;x\x07\x7F\r"), "\\u001b]0;x\\u0007\\u007f\\r");
    EXPECT_EQ(printable("\u009Bm \u202Ex\u2066"), "\\u009bm \\u202ex\\u2066");
    EXPECT_EQ(printable("\x9Bm"), "\uFFFDm");
    EXPECT_EQ(printable("a\nb", line_feeds::escaped), "a\\nb");
}

} // namespace brivant
