#include "charts/outward_rounding.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace brivant {

TEST(round_outward, moves_to_the_next_whole_step_of_the_decade) {
    const std::array<double, 3> rows[] = {
        // value, as maximum, as minimum
        {3421, 4000, 2000},    {47.3, 50, 30}, {5, 6, 4}, {10, 20, 0},       {123456, 130000, 110000},
        {-3421, -2000, -4000}, {-7.5, -6, -8}, {1, 2, 0}, {0.456, 0.5, 0.3}, {0.052, 0.06, 0.04},
        {-0.456, -0.3, -0.5},  {0.009, 0, 0},  {0, 0, 0},
    };
    for (const auto& [value, maximum, minimum] : rows) {
        EXPECT_DOUBLE_EQ(round_outward(value, true), maximum) << value;
        EXPECT_DOUBLE_EQ(round_outward(value, false), minimum) << value;
    }
    EXPECT_FALSE(std::signbit(round_outward(-1.5, true)));
    EXPECT_TRUE(std::isnan(round_outward(std::numeric_limits<double>::quiet_NaN(), true)));
}

} // namespace brivant
