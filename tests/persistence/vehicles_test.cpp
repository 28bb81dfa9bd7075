#include "persistence/recovery.h"
#include "persistence/vehicles.h"

#include "persistence/deletions.h"
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
    for (vehicle_deletion first(t.db, 1); first.step();) {
    }
    EXPECT_EQ(t.column("SELECT VEH_ID FROM VEHICLES UNION ALL SELECT VEH_ID FROM VEH_IMAGES "
                       "UNION ALL SELECT VEH_ID FROM LOGGIES UNION ALL SELECT LOG_ID FROM LOGGIES_DATA"),
              "2 2 2 2");
    EXPECT_EQ(vehicle_or_first(t.db, 1)->id, 2);
    for (vehicle_deletion second(t.db, 2); second.step();) {
    }
    EXPECT_FALSE(vehicle_or_first(t.db, 2).has_value());
}

TEST(vehicles, what_an_older_program_left_half_done_is_put_in_order) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB() && t.db.add_own_parts());
    EXPECT_EQ(put_in_order(t.db), "");
    t.outside("INSERT INTO LOGGIES (LOG_ID, VEH_ID, LOG_TYPE, INFO) VALUES (1, 7, 'Log', '2 Sample points'), "
              "(2, 8, 'DTC', 'Codes'), (3, 1, 'DTC', 'Codes'), (4, 1, 'Log', '2000 Sample points');"
              "INSERT INTO LOGGIES_DATA (LOG_ID, DATA) VALUES (1, '410D3C'), (3, 'text'), (5, 'x'), (6, 'y');"
              "INSERT INTO VEH_IMAGES (VEH_ID) VALUES (1), (7)");
    EXPECT_EQ(put_in_order(t.db),
              "Put in order after a sudden end: 1 log put under the vehicle \"Recovered\", "
              "4 logs of which only a part was left removed, 1 photo without a vehicle removed.");
    EXPECT_EQ(
        t.column(
            "SELECT LOG_ID || '/' || NAME FROM LOGGIES NATURAL JOIN (SELECT VEH_ID, NAME FROM VEHICLES)"),
        "1/Recovered 3/Cur Veh.");
    EXPECT_EQ(t.column("SELECT LOG_ID FROM LOGGIES_DATA UNION ALL SELECT VEH_ID FROM VEH_IMAGES"), "1 3 1");
    EXPECT_EQ(put_in_order(t.db), "");
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

} // namespace brivant
