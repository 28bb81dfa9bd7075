#include "shell/vehicle_list.h"

#include "base/console_log.h"
#include "base/timed_bytes.h"
#include "persistence/sqlite_connection.h"
#include "persistence/stored_logs.h"
#include "shell/jpeg_scans.h"
#include "shell/photo_reading.h"
#include "tests/support/hand_timers.h"
#include "tests/support/print_qt.h"
#include "tests/support/temporary_profile.h"
#include "tests/support/test_file.h"
#include "tests/support/wait_until.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <gtest/gtest.h>

namespace brivant {

namespace {

struct vehicles : testing::Test {
    temporary_profile profile;
    adapter_facts adapter;
    car_state car;
    mac_toolies toolies{adapter, car, profile.defaults, profile.db};
    hand_timers clock;
    vehicle_list list{car, toolies, clock};
    int changes = 0; // of the current one

    vehicles() {
        silence_console_log();
        profile.db.init_DB();
        car.make_current(1, {});
        list.current_changed = [this] { ++changes; };
    }
    int add(const QString& name) { return list.saveCurCarVals(-1, {name, "", ""}, {}).id; }
    QString names() {
        QStringList all;
        for (const vehicle& one : list.load_vehicles())
            all += QString::number(one.id) + " " + one.name;
        return all.join(", ");
    }
    int photo_rows() { return int(profile.db.retrieve_from_DB("SELECT VEH_ID FROM VEH_IMAGES").size()); }
};

struct photo_files : testing::Test {
    QTemporaryDir folder;
    QString path(const QString& name) { return folder.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) { put_file(path(name), bytes); }
    QByteArray read(const QString& name) { return bytes_of(path(name)); }
};

// A JPEG that goes over its picture so often.
QByteArray with_scans(int scans) {
    QBuffer jpeg;
    jpeg.open(QIODevice::WriteOnly);
    QImageWriter writer(&jpeg, "jpg");
    writer.setProgressiveScanWrite(true);
    QImage noise(64, 64, QImage::Format_RGB32);
    for (int i = 0; i < 64 * 64; ++i)
        noise.setPixel(i % 64, i / 64, static_cast<uint>(i * 2654435761U));
    writer.write(noise);
    QByteArray file = jpeg.data();
    const QByteArray last = file.sliced(file.lastIndexOf("\xFF\xDA")).chopped(2);
    while (jpeg_scans(file) < scans)
        file.insert(file.size() - 2, last);
    return file;
}

QImage picture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

} // namespace

TEST_F(vehicles, the_only_one_stays_and_a_deleted_current_one_hands_over) {
    EXPECT_NE(list.deleteCar(1), "");
    EXPECT_EQ(names(), "1 Cur Veh.");

    const int van = add("Van");
    toolies.save_pids_available({{"7E8", {"0C"}}}); // of vehicle 1
    EXPECT_EQ(list.setCurrentCar(van), "");
    toolies.save_pids_2_sample_prefs({"05|7E8"});
    const int log = profile.db.add_2_LOG_DB("Log", van, "sample points");
    profile.db.append_2_LOG_DB("410D3C", "", 0, log);
    EXPECT_EQ(list.count_of_logs(van), 1);
    EXPECT_EQ(list.deleteCar(van), "");
    EXPECT_EQ(names(), "1 Cur Veh.");
    EXPECT_EQ(car.cur_veh_id(), 1);
    EXPECT_EQ(profile.defaults.value(setting::current_vehicle), 1);
    EXPECT_EQ(car.available_pids(), (obd_groups{{"7E8", {"0C"}}}));
    EXPECT_EQ(changes, 2);
    EXPECT_FALSE(profile.defaults.has(setting::sample_set.of_vehicle(van)));
    EXPECT_FALSE(log_with_id(profile.db, log));
    EXPECT_TRUE(profile.db.retrieve_from_DB("SELECT DATA FROM LOGGIES_DATA").isEmpty());

    for (const int unknown : {van, 0, -1})
        EXPECT_NE(list.setCurrentCar(unknown), "");
    EXPECT_EQ(car.cur_veh_id(), 1);
    const int other = add("Other");
    EXPECT_EQ(list.deleteCar(other), "");
    EXPECT_EQ(car.cur_veh_id(), 1);
    EXPECT_EQ(changes, 2) << "the current vehicle is the same";
}

TEST_F(vehicles, with_many_logs_are_gone_at_once_and_their_lines_in_slices) {
    const auto begin = [&](int van) {
        const auto logs =
            QStringLiteral("INSERT INTO LOGGIES (VEH_ID, LOG_TYPE) WITH RECURSIVE n(i) AS (SELECT 1 "
                           "UNION ALL SELECT i + 1 FROM n WHERE i < 2000) SELECT %1, 'DTC' FROM n");
        profile.db.change([&](sqlite_connection& connection) { return connection.execute(logs.arg(van)); });
        EXPECT_EQ(list.setCurrentCar(van), "");
        EXPECT_EQ(list.deleteCar(van), "");
        ASSERT_TRUE(list.is_going(van)) << "the first slice did it all";
    };
    const int van = add("Van");
    begin(van);
    EXPECT_EQ(car.cur_veh_id(), 1) << "nothing is stored for it any more";
    EXPECT_EQ(names(), "1 Cur Veh.");
    EXPECT_NE(list.setCurrentCar(van), "");
    EXPECT_NE(list.deleteCar(van), "");
    int went_on = 0;
    list.deletion_changed = [&] { ++went_on; };
    clock.advance(0);
    EXPECT_GT(went_on, 1);
    EXPECT_EQ(names(), "1 Cur Veh.");
    EXPECT_EQ(list.count_of_logs(van), 0);

    begin(add("Bus"));
    EXPECT_EQ(list.finish_deletion(), ""); // as the terminal does
    EXPECT_EQ(names(), "1 Cur Veh.");
    EXPECT_EQ(clock.running(), 0U);
}

TEST_F(vehicles, may_have_an_apostrophe_and_what_cannot_be_stored_is_told) {
    for (const int id : {-1, 1})
        EXPECT_EQ(list.saveCurCarVals(id, {"Ann's", "19'99", "3.0'"}, {}).problem, "");
    EXPECT_EQ(names(), "1 Ann's, 2 Ann's");
    EXPECT_EQ(vehicle_with_id(profile.db, 2)->model_year, "19'99");
    EXPECT_EQ(photo_rows(), 0);
    const int bus = list.saveCurCarVals(-1, {"Bus", "", ""}, picture(40, 30)).id;
    EXPECT_EQ(photo_of_vehicle(profile.db, bus).width(), 40);
    EXPECT_EQ(list.saveCurCarVals(7, {"Nobody", "", ""}, picture(40, 30)).id, -1);
    EXPECT_EQ(photo_rows(), 1);
}

TEST(vehicle_values, are_checked_where_they_are_typed) {
    using check = QString (*)(const QString&);
    const std::tuple<check, QStringList, QStringList> rows[] = {
        {vehicle_list::name_problem,
         {"Van", "My cool car", QString(60, 'x')},
         {"", "  ", "a\nb", QString(61, 'x')}},
        {vehicle_list::year_problem,
         {"", "2012", "1900"},
         {"12", "201", "20123", "1899", "2100", "20 2", "two"}},
        {vehicle_list::volume_problem, {"", "3.0 lts.", "1,6", "2"}, {"big", ".", "1.2.3", QString(21, '1')}},
    };
    for (const auto& [problem, good, bad] : rows) {
        for (const QString& text : good)
            EXPECT_EQ(problem(text), "") << text.toStdString();
        for (const QString& text : bad)
            EXPECT_NE(problem(text), "") << text.toStdString();
    }
}

TEST_F(photo_files, of_any_common_kind_are_read_upright_and_reduced) {
    for (const char* kind : {"png", "jpg", "bmp", "webp", "tiff"}) {
        const QString name = path(QString("picture.") + kind);
        ASSERT_TRUE(picture(2400, 1200).save(name)) << kind;
        ASSERT_TRUE(QFile::rename(name, path("picture"))); // told by its content
        const photo_file read = read_photo_file(path("picture"));
        EXPECT_EQ(read.problem, "") << kind;
        EXPECT_EQ(read.photo.size(), QSize(1080, 540)) << kind;
        QFile::remove(path("picture"));
    }
    write("one.gif", QByteArray::fromBase64("R0lGODlhAQABAIAAAP8AAP///yH5BAAAAAAALAAAAAABAAEAAAICRAEAOw=="));
    EXPECT_EQ(read_photo_file(path("one.gif")).photo.size(), QSize(1, 1));
    ASSERT_TRUE(picture(16000, 1).save(path("thin.png")));
    EXPECT_EQ(read_photo_file(path("thin.png")).photo.size(), QSize(1080, 1));
    QImageWriter turned(
        path("turned.tiff")); // the one kind that Qt writes lying, with its orientation beside it
    turned.setTransformation(QImageIOHandler::TransformationRotate90);
    ASSERT_TRUE(turned.write(picture(40, 20)));
    EXPECT_EQ(read_photo_file(path("turned.tiff")).photo.size(), QSize(20, 40));
}

TEST_F(photo_files, that_cannot_be_shown_are_refused_with_a_sentence) {
    ASSERT_TRUE(picture(300, 300).save(path("sound.png")));
    ASSERT_TRUE(picture(30, 30).save(path("sound.bmp")));
    const auto resized = [this](const char* width_and_height) { // what the header says
        return read("sound.bmp").replace(18, 8, QByteArray::fromHex(width_and_height));
    };
    write("cut.png", read("sound.png").first(QFileInfo(path("sound.png")).size() / 2));
    write("huge.bmp", resized("FFFF000010000000"));
    write("many.bmp", resized("0020000000200000"));
    write("scans.jpg", with_scans(61));
    write("text.png", "no picture");
    write("empty.png", "");
    write("drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    ASSERT_TRUE(QFile(path("large.png")).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::resize(path("large.png"), 65LL * 1024 * 1024));
    const std::pair<const char*, const char*> rows[] = {
        {"cut.png", "damaged"},     {"huge.bmp", "too many points"}, {"many.bmp", "too many points"},
        {"text.png", "no picture"}, {"empty.png", "no picture"},     {"drawing.svg", "no picture"},
        {"large.png", "too large"}, {"missing.png", "not exist"},    {".", "no file"},
        {"scans.jpg", "too often"},
    };
    for (const auto& [name, why] : rows) {
        const photo_file read = read_photo_file(path(name));
        EXPECT_TRUE(read.photo.isNull()) << name;
        EXPECT_TRUE(read.problem.contains(why)) << name << ": " << read.problem.toStdString();
    }
}

TEST_F(photo_files, are_not_waited_for_without_end) {
    write("progressive.jpg", with_scans(1));
    const int usual = jpeg_scans(read("progressive.jpg"));
    EXPECT_GT(usual, 3);
    EXPECT_LT(usual, 20);
    EXPECT_EQ(jpeg_scans(with_scans(500)), 500);
    EXPECT_EQ(jpeg_scans("\xFF\xD8\xFF\xE1" + QByteArray::fromHex("000AFFDA0002FFDA0002FFDA") +
                         QByteArray::fromHex("0002FF00FFD3FFFFD9FFDA")),
              1)
        << "what stands in a comment or behind the end is none";
    EXPECT_EQ(read_photo_file(path("progressive.jpg")).problem, "");
    timed_bytes late(read("progressive.jpg"), 0);
    EXPECT_TRUE(QImageReader(&late).read().isNull());

    ASSERT_TRUE(picture(2400, 1200).save(path("one.png")));
    std::vector<photo_file> told;
    for (const int ms : {0, 60'000}) {
        photo_reading reading(ms);
        QObject::connect(&reading, &photo_reading::done, &reading,
                         [&](const photo_file& one) { told.push_back(one); });
        reading.begin(path("missing.png")); // replaced before it is read
        reading.begin(path("one.png"));
        EXPECT_TRUE(wait_until([&] { return !reading.is_running(); }));
    }
    ASSERT_EQ(told.size(), 2U);
    EXPECT_TRUE(told[0].photo.isNull());
    EXPECT_TRUE(told[0].problem.contains("too long to read")) << told[0].problem.toStdString();
    EXPECT_EQ(told[1].photo.size(), QSize(1080, 540));
}

} // namespace brivant
