#include "base/string_table.h"
#include "base/text_resources.h"
#include "base/user_defaults.h"
#include "tests/support/test_file.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

TEST(user_defaults, survive_a_restart_in_the_form_that_the_file_always_had) {
    QTemporaryDir folder;
    const QString file = folder.filePath("settings.ini");
    {
        user_defaults defaults(file);
        EXPECT_FALSE(defaults.has(setting::interface_kind));
        EXPECT_EQ(defaults.value(setting::interface_kind), 5);
        defaults.set(setting::interface_kind, 6);
        defaults.set(setting::metric_units, true);
        defaults.set(setting::wifi_ip, "10.0.0.1");
        defaults.set(setting::sample_set.of_vehicle(1), {"0D", "0C|7E8"});
        defaults.set(setting::sample_set.of_vehicle(2), {});
        EXPECT_EQ(defaults.value(setting::interface_kind), 6);
        EXPECT_TRUE(defaults.synchronise());
    }
    EXPECT_EQ(bytes_of(file), "[General]\nBV_interface=6\nBV_metric_units=true\n"
                              "pidsSampleArray_1=0D, 0C|7E8\npidsSampleArray_2=@Invalid()\n"
                              "wifi_IP=10.0.0.1\n");
    const user_defaults again(file);
    EXPECT_EQ(again.value(setting::interface_kind), 6);
    EXPECT_TRUE(again.value(setting::metric_units));
    EXPECT_EQ(again.value(setting::sample_set.of_vehicle(1)), (QStringList{"0D", "0C|7E8"}));
    EXPECT_EQ(again.value(setting::sample_set.of_vehicle(3)), (QStringList{"0D", "11", "0C", "05"}));
}

TEST(user_defaults, may_have_been_edited_by_hand) {
    QTemporaryDir folder;
    const auto edited = [&](const QByteArray& line) {
        static int number = 0;
        const QString file = folder.filePath(QString::number(++number));
        put_file(file, "[General]\n" + line);
        return std::make_unique<user_defaults>(file);
    };
    const std::pair<const char*, int> kinds[] = {{"six", 5}, {"", 5},    {"0", 5},
                                                 {"5", 5},   {" 6 ", 6}, {"-1", 6}};
    for (const auto& [stored, kind] : kinds) {
        const auto defaults = edited(QByteArray("BV_interface=") + stored);
        EXPECT_EQ(defaults->value(setting::interface_kind), kind) << stored;
        EXPECT_EQ(defaults->has(setting::interface_kind), kind == 6 || *stored == '5') << stored;
    }
    EXPECT_EQ(edited("BV_sample_rate=-30")->value(setting::sample_rate), -1);
    EXPECT_EQ(edited("BV_sample_rate=7")->value(setting::sample_rate), 7);
    EXPECT_FALSE(edited("BV_metric_units=")->value(setting::metric_units));
    EXPECT_EQ(edited("wifi_IP=10.0.0.1, 7")->value(setting::wifi_ip), "10.0.0.1,7");
    EXPECT_EQ(edited("wifi_IP=" + QByteArray(80, 'x'))->value(setting::wifi_ip), QString(64, 'x'));
    EXPECT_EQ(edited("BV_last_BT=" + QByteArray(9000, 'x'))->value(setting::bluetooth_address).size(), 4096);
    EXPECT_EQ(edited("pidsSampleArray_2=@Invalid()")->value(setting::sample_set.of_vehicle(2)),
              QStringList()); // an empty list, read by another process
    EXPECT_EQ(
        edited("pidsArray=" + QByteArray("0C, ").repeated(5000))->value(setting::older_sample_set).size(),
        1000);
}

TEST(user_defaults, of_this_run_are_not_stored) {
    QTemporaryDir folder;
    const QString file = folder.filePath("settings.ini");
    user_defaults defaults(file);
    defaults.override_for_this_run(setting::metric_units, true);
    defaults.set(setting::metric_units, false);
    EXPECT_TRUE(defaults.has(setting::metric_units) && defaults.value(setting::metric_units));
    EXPECT_TRUE(defaults.synchronise());
    EXPECT_FALSE(user_defaults(file).value(setting::metric_units));
    defaults.choose(setting::metric_units, false);
    EXPECT_FALSE(defaults.value(setting::metric_units)) << "until the person chooses";
}

TEST(settings_table, is_the_list_of_the_manual_page) {
    QString page = QString::fromUtf8(bytes_of(BV_TESTS "/../packaging/man/brivant-cli.1"));
    page = page.section("\n.RS\n", 1, 1).section("\n.RE\n", 0, 0).replace("\\-", "-");
    QString listed;
    for (const setting_row* row : setting::all) {
        if (row->who == setting::person)
            listed +=
                QStringLiteral("\n.TP\n.I %1\n%2").arg(QString(row->key).replace("%d", "N"), row->words);
    }
    EXPECT_EQ('\n' + page, listed);
}

TEST(settings_table, knows_a_setting_by_its_key) {
    for (const setting_row* row : setting::all) {
        if (*row != setting::sample_set) {
            EXPECT_EQ(setting::with_key(row->file_key())->key, row->key);
        }
    }
    EXPECT_EQ(setting::with_key("pidsSampleArray_12")->vehicle, 12);
    for (const char* unknown :
         {"", "bv_interface", "pidsSampleArray_", "pidsSampleArray_0", "pidsSampleArray_-1",
          "pidsSampleArray_%d", "pidsSampleArray_1x", "pidsSampleArray_99999999999"})
        EXPECT_FALSE(setting::with_key(unknown)) << unknown;
}

TEST(text_resources, lists_and_dictionaries) {
    QTemporaryDir folder;
    put_file(folder.filePath("codes.txt"), "P0133 O2 slow  \n P0220  Throttle\nnothing\nP0300 never read\n");
    const text_resources lists(folder.path());
    EXPECT_EQ(lists.get_array_from_resource("codes", "txt")->size(), 5); // the empty line at the end counts
    EXPECT_FALSE(lists.get_array_from_resource("codes", "csv").has_value());
    EXPECT_FALSE(lists.line("codes", 5).has_value());

    put_file(folder.filePath("maker.txt"), "P0133|slow\n P0220 |throttle\nnothing\nP0300|never read");
    const auto dictionary = lists.get_dictionary_from_resource("maker", "txt", "|");
    EXPECT_EQ(*dictionary, (QMap<QString, QString>{{"P0133", "|slow"}, {"P0220", "|throttle"}}));
}

TEST(string_table, fills_places_in_order) {
    EXPECT_EQ(fill("OBD Cmd: (%s:%s) Timed out!! \n    Retrying...%d/4", {"10.0.0.1", "35000", "2"}),
              "OBD Cmd: (10.0.0.1:35000) Timed out!! \n    Retrying...2/4");
    EXPECT_EQ(fill("%@ 100%% %x %@", {"%d"}), "%d 100% %x %@");
    EXPECT_EQ(localised("no_such_key"), "no_such_key");
    EXPECT_EQ(localised("no_such_key", ""), "");
}

} // namespace brivant
