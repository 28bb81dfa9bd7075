#include "charts/limit_bar.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

bool is_pure(QColor color, QColor wanted) {
    return color.rgb() == wanted.rgb();
}

// The columns of the bar's middle in the color, from the first to the last one: "20-119"; "" for none.
std::string columns_in(const QImage& picture, QColor color) {
    const int row = picture.height() - qRound(20 * picture.devicePixelRatio());
    int first = -1;
    int last = -1;
    for (int x = 0; x < picture.width(); ++x) {
        if (!is_pure(picture.pixelColor(x, row), color))
            continue;
        first = first < 0 ? x : first;
        last = x;
    }
    return first < 0 ? "" : std::to_string(first) + '-' + std::to_string(last);
}

} // namespace

TEST(limit_bar, position_of_the_value) {
    const struct {
        double value, minimum, maximum, at;
    } examples[] = {
        {0, 0, 100, 35},    {100, 0, 100, 85},   {50, 0, 100, 60},   {-50, 0, 100, 10}, {150, 0, 100, 110},
        {400, 0, 100, 235}, {-40, -60, -20, 60}, {14, 14, 15.2, 35}, {32, 32, 32, 60},  {16, 32, 32, 35},
        {64, 32, 32, 110},  {0, 32, 32, 10},     {0, 0, 0, 60},      {5, 0, 0, 110},
    };
    for (const auto& e : examples)
        EXPECT_DOUBLE_EQ(limit_bar_position(e.value, e.minimum, e.maximum), e.at) << e.value;
}

TEST(limit_bar, the_bar_ends_where_the_value_is) {
    const struct {
        const char* limits;
        QColor color;
        const char* columns;
        const char* columns_at_double_size;
    } examples[] = {
        {"0.000~61.000~122.000", Qt::green, "10-59", "20-119"},
        {"0.000~122.000~122.000", Qt::green, "10-84", "20-169"},
        {"0.000~900.000~122.000", Qt::red, "10-109", "20-219"}, // ends with the scale
        {"0.000~-900.000~122.000", Qt::red, "10-12", "20-25"},  // never too short to be seen
        {"32~16~min", Qt::red, "10-34", "20-69"},
        {"32~48~min", Qt::green, "10-84", "20-169"},
        {"32~48~max", Qt::red, "10-84", "20-169"},
        {"32~32~min", Qt::green, "10-59", "20-119"},
        {"32~32~max", Qt::green, "10-59", "20-119"},
        {"32~16~max", Qt::green, "10-34", "20-69"},
        {"-20.000~-20.000~10.000", Qt::green, "10-34", "20-69"},
    };
    for (const auto& [limits, color, columns, columns_at_double_size] : examples) {
        limit_bar_look look;
        look.ink = Qt::blue;
        const QImage picture = draw_the_mode6_cues(limits, {180, 44}, look, QImage());
        EXPECT_EQ(picture.size(), QSize(180, 44));
        EXPECT_EQ(columns_in(picture, color), columns) << limits;
        EXPECT_EQ(columns_in(picture, color == Qt::red ? Qt::green : Qt::red), "") << limits;
        EXPECT_TRUE(is_pure(picture.pixelColor(0, 0), look.ground));

        look.pixel_ratio = 2;
        const QImage doubled = draw_the_mode6_cues(limits, {180, 44}, look, QImage());
        EXPECT_EQ(doubled.size(), QSize(360, 88));
        EXPECT_EQ(columns_in(doubled, color), columns_at_double_size) << limits;
    }
}

TEST(limit_bar, the_range_picture_lies_under_the_bar) {
    QImage range(120, 40, QImage::Format_RGB32);
    range.fill(Qt::yellow);
    const QImage picture = draw_the_mode6_cues("0~61~122", {180, 44}, {}, range);
    EXPECT_TRUE(is_pure(picture.pixelColor(2, 42), Qt::yellow));
    EXPECT_TRUE(is_pure(picture.pixelColor(150, 42), limit_bar_look().ground));
    EXPECT_EQ(columns_in(picture, Qt::green), "10-59");
}

TEST(limit_bar, draws_whatever_the_row_holds) {
    for (const char* limits : {"", "~~", "a~b~c", "nan~inf~-inf", "1e308~-1e308~1e308", "5~5"})
        EXPECT_EQ(draw_the_mode6_cues(limits, {180, 44}, {}, QImage()).width(), 180) << limits;
    EXPECT_TRUE(draw_the_mode6_cues("0~1~2", {0, 0}, {}, QImage()).isNull());
}

} // namespace brivant
