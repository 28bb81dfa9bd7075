#include "charts/o2_layouts.h"

#include <bit>

namespace brivant {

namespace {

// clang-format off
constexpr o2_layout first_alone  {{{{0, "S11", 139, 149, 123, 132}}}, 1};
constexpr o2_layout second_alone {{{{0, "S12", 210, 149, 210, 132}}}, 1};
constexpr o2_layout one_pipe     {{{{0, "S11", 130, 149, 123, 132},
                                    {1, "S12", 210, 149, 210, 132}}}, 2};
constexpr o2_layout two_rear     {{{{0, "S12", 225, 149, 210, 132},
                                    {1, "S22", 225,  66, 210,  78}}}, 2, true};
constexpr o2_layout two_front    {{{{0, "S11", 130, 149, 123, 132},
                                    {1, "S21", 130,  66, 123,  78}}}, 2, true};
constexpr o2_layout three        {{{{0, "S11", 130, 149, 123, 132},
                                    {1, "S12", 210, 149, 210, 132},
                                    {2, "S13", 335, 149, 335, 132}}}, 3};
constexpr o2_layout four         {{{{0, "S11", 130, 149, 123, 132},
                                    {1, "S12", 210, 149, 210, 132},
                                    {2, "S21", 130,  66, 123,  78},
                                    {3, "S22", 225,  66, 210,  78}}}, 4, true};
constexpr o2_layout five         {{{{0, "S11", 130, 149, 123, 132},
                                    {1, "S12", 210, 149, 210, 132},
                                    {3, "S21", 130,  66, 123,  78},
                                    {4, "S22", 210,  66, 210,  81}, // the value a little higher
                                    {2, "S13", 365, 109, 365,  88}}}, 5, true, true};
constexpr o2_layout six          {{{{0, "S11", 130, 149, 123, 132},
                                    {1, "S12", 210, 149, 210, 132},
                                    {2, "S13", 335, 149, 335, 132},
                                    {3, "S21", 130,  66, 123,  78},
                                    {4, "S22", 210,  66, 210,  78},
                                    {5, "S23", 335,  66, 335,  78}}}, 6, true};
constexpr o2_layout none{};
// clang-format on

} // namespace

const o2_layout& o2_layout_of(int mask) {
    const bool bank_2 = (mask & 0x30) != 0;
    switch (std::popcount(static_cast<unsigned>(mask))) {
    case 1: return (mask & 0x01) != 0 ? first_alone : second_alone;
    case 2: return !bank_2 ? one_pipe : (mask & 0x22) != 0 ? two_rear : two_front;
    case 3: return three;
    case 4: return four;
    case 5: return five;
    case 6: return six;
    default: return none;
    }
}

} // namespace brivant
