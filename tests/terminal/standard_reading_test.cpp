#include "tests/terminal/cli_process.h"

namespace brivant {

// Both readings of the car with more codes than a frame holds, through the real program.

namespace {

QStringList codes_of(const QJsonValue& rows) {
    QStringList codes;
    for (const QJsonValue row : rows.toArray())
        codes += row["code"].toString();
    return codes;
}

} // namespace

TEST(standard_reading, stands_beside_the_program_s_own) {
    const QString car = "--demo=can11-many-codes";
    const QStringList all{"P0101", "P0113", "P0118", "P0171", "P0300", "P0420", "U0121", "P0741"};
    cli_process own({car, "--json", "read-codes"}), text({car, "read-codes"}),
        standard({car, "--json", "--standard-reading", "read-codes"}),
        values({car, "--metric", "vehicle-info"}), report({car, "--standard-reading", "report"});
    ASSERT_EQ(own.status(), 0);
    const QJsonObject result = own.json();
    EXPECT_EQ(codes_of(result["standard"]["codes"]), all);
    EXPECT_NE(codes_of(result["codes"]), all);
    EXPECT_TRUE(result["differs"].toBool());
    EXPECT_EQ(result["reading"], "program");
    EXPECT_FALSE(result.contains("permanent"));

    ASSERT_EQ(text.status(), 0);
    const QString shown(text.out());
    EXPECT_TRUE(shown.contains("\nBy SAE J1979 this reply holds: " + all.join(", ") + '\n'));
    EXPECT_TRUE(shown.contains("(not by SAE J1979)") &&
                shown.contains("\nIn this reply by SAE J1979\nP0101"));

    ASSERT_EQ(standard.status(), 0);
    const QJsonObject other = standard.json();
    EXPECT_EQ(other["reading"], "standard");
    EXPECT_EQ(codes_of(other["codes"]), all) << "where a script always reads them";
    EXPECT_EQ(other["program"]["codes"], result["codes"]);
    EXPECT_EQ(codes_of(other["permanent"]), (QStringList{"P0171", "P0300", "P0420"}));
    EXPECT_TRUE(other["drive_cycle_note"].toString().startsWith("This car does not tell"));

    ASSERT_EQ(values.status(), 0);
    EXPECT_TRUE(QString(values.out()).contains("\n    By SAE J1979: ")) << values.out().constData();
    ASSERT_EQ(report.status(), 0);
    EXPECT_TRUE(QString(report.out()).contains("\nStandard reading: ")) << report.out().constData();
    EXPECT_TRUE(QString(report.out()).contains("[8]  " + all.join(", ")));
}

} // namespace brivant
