#include "charts/drawO2Sensors.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct car_with : drawO2Sensors {
    explicit car_with(int sensors_present, o2_banks order = o2_banks::two) {
        initO2Charty();
        set_banks(order);
        fits = work_out_sensor_lay_out(sensors_present, -1);
    }
    // Beside the sign in the dot's middle.
    QColor colour_of_dot(int x, int y) {
        set_look(2, {});
        return imageRepresentation().pixelColor(2 * x, 2 * (height - y) + 9);
    }
    bool fits = false;
};

QStringList dots_of(int mask) {
    return car_with(mask).dots_pos();
}

} // namespace

TEST(drawO2Sensors, lays_out_by_count_and_banks) {
    struct car {
        int mask;
        const char* dots;
        const char* names; // in the order of the sample set
    };
    // clang-format off
    const car cars[] = {
        {0x01, "139|149",                                           "S11"},
        {0x02, "210|149",                                           "S12"},
        {0x03, "130|149 210|149",                                   "S11 S12"},
        {0x22, "225|149 225|66",                                    "S12 S22"},
        {0x12, "210|149 130|66",                                    "S12 S21"},
        {0x13, "130|149 210|149 130|66",                            "S11 S12 S21"},
        {0x21, "130|149 210|66",                                    "S11 S22"},
        {0x10, "130|66",                                            "S21"},
        {0x0F, "130|149 210|149 335|149",                           "S11 S12 S13 S14"},
        {0x73, "130|149 210|149 130|66 210|66 335|66",              "S11 S12 S21 S22 S23"},
        {0x11, "130|149 130|66",                                    "S11 S21"},
        {0x07, "130|149 210|149 335|149",                           "S11 S12 S13"},
        {0x33, "130|149 210|149 130|66 225|66",                     "S11 S12 S21 S22"},
        {0x37, "130|149 210|149 130|66 210|66 365|109",             "S11 S12 S13 S21 S22"},
        {0x77, "130|149 210|149 335|149 130|66 210|66 335|66",      "S11 S12 S13 S21 S22 S23"},
    };
    // clang-format on
    for (const car& one : cars) {
        car_with picture(one.mask);
        EXPECT_TRUE(picture.fits);
        EXPECT_EQ(picture.dots_pos().join(u' '), QLatin1String(one.dots)) << one.mask;
        QStringList names;
        for (int sensor = 0; sensor < picture.sensor_count(); ++sensor)
            names += picture.name_of(sensor);
        EXPECT_EQ(names.join(u' '), QLatin1String(one.names)) << one.mask;
    }
    for (const int mask : {0x00, 0x7F, 0xFF}) {
        EXPECT_FALSE(car_with(mask).fits);
        EXPECT_EQ(dots_of(mask), QStringList());
        EXPECT_FALSE(car_with(mask).imageRepresentation().isNull());
    }
}

// By PID 1D two sensors each of four banks; what has no point stands beside the picture.
TEST(drawO2Sensors, lays_out_four_banks) {
    car_with car(0x17, o2_banks::four);
    EXPECT_EQ(car.dots_pos().join(u' '), "130|149 210|149 130|66");
    const QImage without = car.imageRepresentation();
    car.set_sensor_value(3, -1, "0.100");
    EXPECT_EQ(car.beside_the_picture(), "S31 0.100 (lean)");
    EXPECT_NE(car.imageRepresentation(), without);
    EXPECT_EQ(car.in_words(), "S11 no value, S12 no value, S21 no value, S31 0.100 (lean)");
    EXPECT_EQ(car_with(0x77).beside_the_picture(), QString());
}

// Behind the converter a high voltage is as it should be.
TEST(drawO2Sensors, tells_lean_from_rich_before_the_converter) {
    car_with car(0x37);
    const auto state = [&car](const char* value) {
        car.set_sensor_value(3, 1, QLatin1String(value));
        return car.state_of(3);
    };
    car.set_sensor_value(2, 1, "0.700");
    EXPECT_EQ(car.state_of(2), 0);
    EXPECT_EQ(state("0.299"), -1);
    EXPECT_EQ(state("0.300"), 0);
    EXPECT_EQ(state("0.600"), 0);
    EXPECT_EQ(state("0.601"), 1);
    EXPECT_EQ(state("-nan"), 0);
    car.set_sensor_value(2, 1, "nan");
    car.set_switching(0x17); // the fourth one tells milliamperes
    EXPECT_EQ(state("-2.000"), 0);
    EXPECT_EQ(state("nan"), 0);
    EXPECT_EQ(car.in_words(), "S11 no value, S12 no value, S13 no value, S21 no value, S22 no value");
}

TEST(drawO2Sensors, colours_the_dot_of_the_sensor_that_was_read) {
    car_with car(0x37);
    const QColor idle = car.colour_of_dot(365, 109);
    car.set_sensor_value(2, 1, "0.900"); // the third of the set is the one behind the Y pipe
    EXPECT_EQ(car.colour_of_dot(365, 109), idle);
    car.set_sensor_value(0, 1, "0.900");
    const QColor rich = car.colour_of_dot(130, 149);
    EXPECT_GT(rich.red(), rich.blue() + 80);
    EXPECT_EQ(car.colour_of_dot(130, 66), idle);
    car.set_sensor_value(3, 1, "0.100");
    const QColor lean = car.colour_of_dot(130, 66);
    EXPECT_GT(lean.blue(), lean.red() + 80);
    EXPECT_EQ(car.sensor_at({131, 64}), 3);
    EXPECT_EQ(car.sensor_at({180, 107}), -1);

    // Another car: nothing of the last one stays.
    car.work_out_sensor_lay_out(0x03, -1);
    EXPECT_EQ(car.in_words(), "S11 no value, S12 no value");
}

TEST(drawO2Sensors, highlights_what_the_person_chose_before_what_the_run_says) {
    car_with car(0x03);
    const auto picture = [&car](int by_run) {
        car.set_sensor_value(0, by_run, "0.450");
        return car.imageRepresentation();
    };
    const QImage second = picture(1);
    EXPECT_NE(second, picture(0));
    car.select(1);
    EXPECT_EQ(picture(0), second);
}

TEST(drawO2Sensors, a_name_stands_in_its_place_also_when_its_sensor_is_chosen) {
    car_with car(0x03);
    car.set_look(2, {});
    const auto name_begins = [&car](int chosen) { // above the dot at 130|149 and its ring
        car.select(chosen);
        const QImage& picture = car.imageRepresentation();
        for (int x = 240; x < 300; ++x)
            for (int y = 161; y < 165; ++y)
                if (picture.pixelColor(x, 2 * (car.height - y)).alpha() > 128)
                    return x;
        return 0;
    };
    EXPECT_NEAR(name_begins(0), 2 * 130, 3);
    EXPECT_EQ(name_begins(1), name_begins(0));
}

} // namespace brivant
