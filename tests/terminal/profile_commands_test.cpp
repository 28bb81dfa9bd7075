#include "tests/support/http_server.h"
#include "tests/support/test_file.h"
#include "tests/terminal/cli_process.h"

#include <QFile>

namespace brivant {

// The commands for vehicles and settings, on a profile that is kept from run to run.

namespace {

struct kept_profile {
    QTemporaryDir folder;

    std::tuple<int, QString, QString> run(const QStringList& words) {
        cli_process process(QStringList{"--profile", folder.path()} + words);
        const int status = process.status();
        return {status, process.out(), process.progress()};
    }
    int status(const QStringList& words) { return std::get<0>(run(words)); }
    QString out(const QStringList& words) { return std::get<1>(run(words)); }
    QJsonObject json(const QStringList& words) {
        return QJsonDocument::fromJson(out(QStringList(words) << "--json").toUtf8()).object();
    }
};

} // namespace

TEST(vehicles_command, keeps_the_vehicles) {
    kept_profile home;
    const QString photo = home.folder.filePath("photo.gif");
    put_file(photo, QByteArray::fromBase64("R0lGODlhAQABAIAAAP8AAP///yH5BAAAAAAALAAAAAABAAEAAAICRAEAOw=="));
    EXPECT_EQ(home.out({"vehicles", "list"}), "*    1  Cur Veh.  2012  3.0 lts.\n");
    EXPECT_EQ(home.out({"vehicles", "add", "Ann's", "year=2019", "photo=" + photo}), "2\n");
    EXPECT_EQ(home.status({"vehicles", "edit", "2", "engine=1.6"}), 0);
    EXPECT_EQ(home.status({"vehicles", "use", "2"}), 0);
    const QJsonArray listed = home.json({"vehicles", "list"})["vehicles"].toArray();
    EXPECT_EQ(listed[1].toObject(), (QJsonObject{{"id", 2},
                                                 {"name", "Ann's"},
                                                 {"model_year", "2019"},
                                                 {"engine_volume", "1.6"},
                                                 {"current", true}}));
    for (const QStringList& refused :
         {QStringList{"vehicles", "use", "9"},
          {"vehicles", "edit", "2", "photo=" + home.folder.filePath("none.png")}}) {
        const auto [status, out, why] = home.run(refused);
        EXPECT_EQ(status, 1) << refused.join(' ').toStdString();
        EXPECT_TRUE(out.isEmpty() && !why.isEmpty()) << refused.join(' ').toStdString();
    }
    EXPECT_EQ(home.status({"vehicles", "delete", "2"}), 2); // not without --yes
    EXPECT_EQ(home.status({"vehicles", "delete", "2", "--yes"}), 0);
    EXPECT_EQ(home.out({"settings", "get", "BV_cur_veh_id"}), "1\n");
    const QJsonObject only = home.json({"vehicles", "delete", "1", "--yes"});
    EXPECT_FALSE(only["done"].toBool(true));
    EXPECT_EQ(home.json({"vehicles", "list"})["vehicles"].toArray().size(), 1);
}

TEST(settings_command, stores_what_the_preferences_would_store) {
    kept_profile home;
    const QStringList good[] = {{"BV_interface", "6"},
                                {"wifi_IP", "10.0.0.5"},
                                {"wifi_IP", "2001:0db8:85a3:0000:0000:8a2e:0370:7334"},
                                {"wifi_IP", "fe80:1111:2222:3333:4444:5555:6666:7777%wlp123s45f67g8"},
                                {"wifi_port", "35001"},
                                {"BV_gpsd", "[fe80::1%eth0]:2947"},
                                {"BV_log_runs", "true"},
                                {"BV_sample_rate", "30"},
                                {"BV_sample_rate", "-1"},
                                {"BV_cur_veh_id", "1"},
                                {"pidsSampleArray_1", "0C,0D|7E8"}};
    for (const QStringList& pair : good) {
        EXPECT_EQ(home.status(QStringList{"settings", "set"} + pair), 0) << pair.join(' ').toStdString();
        EXPECT_EQ(home.out({"settings", "get", pair.first()}), pair.last() + '\n');
    }
    const std::pair<QStringList, int> bad[] = {
        {{"BV_interface", "7"}, 2},      {{"wifi_IP", "a b"}, 2},
        {{"wifi_IP", "fe80::1::2"}, 2},  {{"wifi_IP", "[fe80::1]"}, 2},
        {{"wifi_port", "70000"}, 2},     {{"BV_gpsd", "::1:2947"}, 2},
        {{"BV_log_runs", "maybe"}, 2},   {{"BV_sample_rate", "31"}, 2},
        {{"BV_cur_veh_id", "x"}, 2},     {{"BV_cur_veh_id", "9"}, 1},
        {{"pidsSampleArray_1", "0"}, 2}, {{"pidsSampleArray_9", "0C"}, 1},
        {{"BV_unknown", "1"}, 2},        {{"wifi_port"}, 2},
    };
    for (const auto& [pair, status] : bad)
        EXPECT_EQ(home.status(QStringList{"settings", "set"} + pair), status) << pair.join(' ').toStdString();
    const QJsonObject all = home.json({"settings", "get"})["settings"].toObject();
    EXPECT_EQ(all["BV_interface"], 6);
    EXPECT_EQ(all["wifi_port"], "35001");
    EXPECT_EQ(all["BV_log_runs"], true);
    EXPECT_EQ(all["pidsSampleArray_1"], (QJsonArray{"0C", "0D|7E8"}));
    EXPECT_EQ(home.status({"settings"}), 2);
}

TEST(anonymous_reports, tell_of_no_car_which_it_is) {
    const std::pair<QString, QByteArray> cars[] = {
        {"can11", "1G1JC5444R7252367"}, {"can29", "1ZZTD4762CA007755"}, {"iso9141", "1ZZKL1127YA000942"}};
    for (const auto& [car, vin] : cars) {
        kept_profile home;
        const QString demo = "--demo=" + car;
        for (const QStringList& words :
             {QStringList{demo, "vehicle-info"}, {demo, "--json", "vehicle-info"}}) {
            const QString told = home.out(words);
            const QString hidden = home.out(QStringList("--anonymous") + words);
            EXPECT_GT(told.count(vin.last(8)), 0) << car.toStdString();
            EXPECT_EQ(hidden.count(vin.last(8)), 0) << hidden.toStdString();
            EXPECT_TRUE(hidden.contains("**************")) << hidden.toStdString();
        }
        QFile(home.folder.filePath("Documents/console.log")).remove();
        EXPECT_EQ(home.status({"settings", "set", "BV_anonymous", "true"}), 0);
        EXPECT_EQ(home.status({demo, "--log", "vehicle-info"}), 0);
        EXPECT_EQ(home.out({"logs", "show", "1"}).count(vin.last(8)), 0);
        const QByteArray lines = bytes_of(home.folder.filePath("Documents/console.log"));
        EXPECT_TRUE(lines.contains("Sending[09 02")) << car.toStdString();
        EXPECT_FALSE(lines.contains(vin.last(8)) || lines.contains(vin.last(4).toHex().toUpper()) ||
                     lines.contains(vin.last(4).toHex(' ').toUpper()))
            << car.toStdString();
    }
}

TEST(update_check_command, asks_the_server_in_the_settings_alone) {
    kept_profile home;
    const QByteArray archive = QByteArray("new").repeated(1000);
    http_server server;
    server.offer(archive);
    EXPECT_EQ(home.json({"update-check"})["problem"].toString(),
              "No update server is set, so none was asked.");
    for (const auto& [words, status] : {std::pair<QStringList, int>{{"update-check"}, 1},
                                        {{"update-check", "install"}, 2},
                                        {{"settings", "set", "BV_update_server", "http://example.org"}, 2},
                                        {{"settings", "set", "BV_update_server", server.address()}, 0},
                                        {{"update-check"}, 0}})
        EXPECT_EQ(home.status(words), status) << words.join(' ').toStdString();
    const QJsonObject asked = home.json({"update-check"});
    EXPECT_EQ(asked["newest"].toString(), "99.1");
    EXPECT_TRUE(asked["is_newer"].toBool());
    EXPECT_EQ(asked["file"].toString(), "");
    EXPECT_EQ(bytes_of(home.json({"update-check", "download"})["file"].toString()), archive);
}

} // namespace brivant
