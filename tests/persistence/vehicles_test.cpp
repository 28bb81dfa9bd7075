#include "persistence/vehicles.h"

#include "persistence/deletions.h"
#include "persistence/stored_logs.h"
#include "persistence/vehicle_photos.h"
#include "tests/persistence/test_database.h"

#include <QBuffer>

namespace brivant {

namespace {

QImage picture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

} // namespace

TEST(vehicles, photos_are_scaled_stored_and_replaced) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    EXPECT_TRUE(photo_of_vehicle(t.db, 1).isNull());
    EXPECT_EQ(store_vehicle_photo(t.db, 1, picture(1000, 500)), 1);
    const QImage scaled = photo_of_vehicle(t.db, 1);
    EXPECT_EQ(scaled.size(), QSize(270, 135));
    EXPECT_EQ(scaled.pixelColor(100, 100), QColor(Qt::red));

    for (const int width : {200, 270, 271}) { // the same row
        EXPECT_EQ(store_vehicle_photo(t.db, 1, picture(width, 50)), 1);
        EXPECT_EQ(t.db.pull_veh_image(" VEH_IMAGE_ID=1").width(), std::min(width, 270));
    }
    EXPECT_EQ(store_vehicle_photo(t.db, 2, {}), 2);
    EXPECT_EQ(t.column("SELECT VEH_IMAGE_ID FROM VEH_IMAGES WHERE IMG_NAME='cur_picy' AND PICY IS NULL"),
              "2");
    EXPECT_TRUE(photo_of_vehicle(t.db, 2).isNull());
    EXPECT_EQ(t.db.do_update_vehicle_image("2", picture(2, 2), "2 OR 1"), 0);
    EXPECT_EQ(t.db.do_update_vehicle_image("2 OR 1", picture(2, 2), "-666"), 0);
    EXPECT_TRUE(t.db.pull_veh_image("nonsense").isNull());
    EXPECT_TRUE(t.log().contains("add_2_LOG_DB::sqlite3_prepare_v2:: no such column: nonsense"));
}

TEST(vehicles, bytes_that_are_no_photo_give_none) {
    EXPECT_TRUE(photo_of_tiff({}).isNull());
    EXPECT_TRUE(photo_of_tiff("no picture at all").isNull());
    EXPECT_TRUE(photo_of_tiff(tiff_of_photo(picture(1, 5000))).isNull());
    QBuffer png;
    ASSERT_TRUE(picture(2, 2).save(&png, "png"));
    EXPECT_TRUE(photo_of_tiff(png.data()).isNull());
    EXPECT_FALSE(photo_of_tiff(tiff_of_photo(picture(30, 30))).isNull());
}

TEST(vehicles, deletion_takes_photos_and_logs_of_that_vehicle_only) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB() && t.db.add_own_parts());
    ASSERT_EQ(t.db.add_update_DB({"Van", "2001", "2.4"}, "VEHICLES"), 2);
    for (const int veh_id : {1, 2, 1}) {
        const int log = t.db.add_2_LOG_DB("Log", veh_id, "sample points");
        ASSERT_GT(t.db.append_2_LOG_DB("410D3C", "", 0, log), 0);
        ASSERT_GT(store_vehicle_photo(t.db, veh_id, picture(2, 2)), 0);
    }
    EXPECT_EQ(vehicle_or_first(t.db, 2)->name, "Van");
    t.outside("INSERT INTO LOGGIES_DATA (LOG_ID, DATA) SELECT 3, 'x' FROM (WITH RECURSIVE n(i) AS "
              "(SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9000) SELECT i FROM n)");
    vehicle_deletion first(t.db, 1);
    EXPECT_EQ(first.logs().asked(), 2);
    for (int steps = 0; steps < 2; ++steps) { // wherever it is cut short, it is listed
        ASSERT_TRUE(first.step());
        EXPECT_EQ(vehicle_or_first(t.db, 1)->id, 1);
    }
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM LOGGIES_DATA WHERE LOG_ID=3"), "1042");
    vehicle_deletion again(t.db, 1); // by the next program
    EXPECT_EQ(again.logs().asked(), 1);
    while (again.step()) {
    }
    EXPECT_FALSE(again.has_failed());
    EXPECT_EQ(t.column("SELECT VEH_ID FROM VEHICLES UNION ALL SELECT VEH_ID FROM VEH_IMAGES "
                       "UNION ALL SELECT VEH_ID FROM LOGGIES UNION ALL SELECT LOG_ID FROM LOGGIES_DATA"),
              "2 2 2 2");
    EXPECT_EQ(vehicle_or_first(t.db, 1)->id, 2);
    vehicle_deletion second(t.db, 2);
    while (second.step()) {
    }
    EXPECT_FALSE(vehicle_or_first(t.db, 2).has_value());
}

TEST(vehicles, the_supported_pids_tell_whether_the_car_is_the_same) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    const obd_groups car{{"7E8", {"01", "0C"}}, {"7E9", {"0D"}}};
    EXPECT_TRUE(grab_pids_available(t.db, 1).isEmpty());
    EXPECT_TRUE(checkIfSameVehicle(t.db, 1, car)); // none stored yet
    EXPECT_TRUE(checkIfSameVehicle(t.db, 9, car)); // no such vehicle
    ASSERT_TRUE(store_pids_available(t.db, 1, car));
    EXPECT_EQ(grab_pids_available(t.db, 1), car);
    EXPECT_TRUE(checkIfSameVehicle(t.db, 1, {car[1], car[0]}));
    EXPECT_FALSE(checkIfSameVehicle(t.db, 1, {car[0]}));
    // The first byte of a header of ISO 14230 holds the length.
    ASSERT_TRUE(store_pids_available(t.db, 1, {{"86F110", {"0C"}}}));
    EXPECT_TRUE(checkIfSameVehicle(t.db, 1, {{"83F110", {"0C"}}}, 5));
    EXPECT_FALSE(checkIfSameVehicle(t.db, 1, {{"83F110", {"0C"}}}, 3));
    t.outside("UPDATE VEHICLES SET XTRA_INFO='{[', VEH_ID=VEH_ID");
    EXPECT_TRUE(grab_pids_available(t.db, 1).isEmpty());
    EXPECT_FALSE(checkIfSameVehicle(t.db, 1, car));
}

TEST(stored_logs, a_sampling_run_keeps_or_loses_its_header) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    const int full = t.db.add_2_LOG_DB("Boost", 1, "sample points");
    const int empty = t.db.add_2_LOG_DB("Log", 1, "sample points");
    EXPECT_TRUE(finish_sampling_log(t.db, full, "12 Sample points  : 5 sec rate"));
    EXPECT_TRUE(delete_empty_sampling_log(t.db, empty));
    const auto header = log_with_id(t.db, full);
    ASSERT_TRUE(header.has_value());
    EXPECT_EQ(header->type + "|" + header->info, "Boost|12 Sample points  : 5 sec rate");
    EXPECT_FALSE(log_with_id(t.db, empty).has_value());
    EXPECT_FALSE(log_header_of({"1", "", "Log"}).has_value());
}

} // namespace brivant
