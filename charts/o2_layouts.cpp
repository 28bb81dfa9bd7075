#include "charts/o2_layouts.h"

#include <algorithm>
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

const o2_layout& layout_by_count(int mask) {
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

// Every sensor at its own point.
o2_layout layout_by_name(const QStringList& names) {
    o2_layout layout;
    for (const o2_sensor_place& point : six.places()) {
        const qsizetype index = names.indexOf(QLatin1String(point.name));
        if (index < 0)
            continue;
        layout.sensors[layout.count] = point;
        layout.sensors[layout.count++].index = static_cast<int>(index);
        layout.two_banks |= point.name[1] == '2';
    }
    return layout;
}

} // namespace

QStringList o2_sensor_names(int mask, o2_banks banks) {
    constexpr unsigned first_sensor_pid = 0x14;
    QStringList names;
    for (unsigned bit = 0; bit < 8; ++bit)
        if ((mask >> bit & 1) != 0)
            names += o2_sensor_of(QString::number(first_sensor_pid + bit, 16), banks)
                         .replace(u'B', u'S')
                         .remove(2, 1);
    return names;
}

o2_layout o2_layout_of(int mask, o2_banks banks) {
    const QStringList names = o2_sensor_names(mask, banks);
    const o2_layout& by_count = layout_by_count(mask);
    const auto places = by_count.places();
    const bool is_its_own = std::all_of(places.begin(), places.end(), [&names](const o2_sensor_place& place) {
        return names.value(place.index) == QLatin1String(place.name);
    });
    return is_its_own ? by_count : layout_by_name(names);
}

unsigned switching_sensors(const QStringList& set) {
    constexpr qsizetype most_sensors = 8;
    unsigned sensors = 0;
    for (qsizetype place = 0; place < std::min(set.size(), most_sensors); ++place) {
        const QString& pid = set.at(place);
        if (pid >= QLatin1String("14") && pid <= QLatin1String("1B"))
            sensors |= 1U << place;
    }
    return sensors;
}

} // namespace brivant
