#include "base/string_table.h"
#include "base/text_resources.h"
#include "base/user_defaults.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(user_defaults, survive_a_restart_and_a_hand_edited_file) {
    QTemporaryDir folder;
    const QString file = folder.filePath("settings.ini");
    {
        user_defaults defaults(file);
        EXPECT_FALSE(defaults.has("BV_interface"));
        EXPECT_EQ(defaults.integer("BV_interface", 5), 5);
        defaults.set("BV_interface", 6);
        defaults.set("BV_metric_units", true);
        defaults.set("pidsSampleArray_1", QStringList{"0D", "11"});
        defaults.set("pidsSampleArray_2", QStringList{});
        EXPECT_EQ(defaults.integer("BV_interface", 5), 6);
        EXPECT_TRUE(defaults.synchronise());
    }
    user_defaults again(file);
    EXPECT_EQ(again.integer("BV_interface", 5), 6);
    EXPECT_TRUE(again.boolean("BV_metric_units", false));
    EXPECT_EQ(again.list("pidsSampleArray_1", {}), (QStringList{"0D", "11"}));

    write(
        file,
        "[General]\nBV_interface=six\nwifi_IP=10.0.0.1, 7\nBV_metric_units=\npidsSampleArray_2=@Invalid()\n");
    user_defaults edited(file);
    EXPECT_EQ(edited.integer("BV_interface", 5), 5);
    EXPECT_FALSE(edited.boolean("BV_metric_units", true));
    EXPECT_EQ(edited.text("wifi_IP", "", 8), "10.0.0.1");
    EXPECT_EQ(edited.list("pidsSampleArray_2", {"x"}),
              QStringList()); // an empty list, read by another process
}

TEST(user_defaults, of_this_run_are_not_stored) {
    QTemporaryDir folder;
    user_defaults defaults(folder.filePath("settings.ini"));
    defaults.override_for_this_run("BV_metric_units", true);
    EXPECT_TRUE(defaults.has("BV_metric_units") && defaults.boolean("BV_metric_units", false));
    EXPECT_TRUE(defaults.synchronise());
    EXPECT_FALSE(user_defaults(folder.filePath("settings.ini")).has("BV_metric_units"));
}

TEST(text_resources, lists_and_dictionaries) {
    QTemporaryDir folder;
    write(folder.filePath("codes.txt"), "P0133 O2 slow  \n P0220  Throttle\nnothing\nP0300 never read\n");
    const text_resources lists(folder.path());
    EXPECT_EQ(lists.get_array_from_resource("codes", "txt")->size(), 5); // the empty line at the end counts
    EXPECT_FALSE(lists.get_array_from_resource("codes", "csv").has_value());
    EXPECT_FALSE(lists.line("codes", 5).has_value());

    write(folder.filePath("maker.txt"), "P0133|slow\n P0220 |throttle\nnothing\nP0300|never read");
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
