#include "obd/mode6_scaling.h"

#include "base/shared_types.h"
#include "base/text_resources.h"
#include "obd/number_text.h"
#include "obd/reply_text.h"

#include <algorithm>
#include <iterator>

namespace brivant {

namespace {

struct scaling {
    unsigned uasid;
    double factor;
    double offset;
    const char* unit;
};

// Identifiers with bit 7 are signed in the standard. See scaled() for what that means here.
// clang-format off
constexpr scaling scalings[] = {
    {0x01, 1,          0,       ""},
    {0x02, 2,          0,       ""},          // odd on purpose: the standard has 0.1
    {0x03, 3,          0,       ""},          // odd on purpose: the standard has 0.01
    {0x04, 4,          0,       ""},          // odd on purpose: the standard has 0.001
    {0x05, 3.05e-5,    0,       ""},
    {0x06, 0.000305,   0,       ""},
    {0x07, 0.25,       0,       "RPM"},
    {0x08, 0.01,       0,       "KPH"},
    {0x09, 1,          0,       "KPH"},
    {0x0A, 0.122,      0,       "mV"},
    {0x0B, 0.001,      0,       "V"},
    {0x0C, 0.01,       0,       "V"},
    {0x0D, 0.00390625, 0,       "mA"},
    {0x0E, 0.001,      0,       "A"},
    {0x0F, 0.01,       0,       "A"},
    {0x10, 1,          0,       "ms"},
    {0x11, 100,        0,       "ms"},
    {0x12, 1,          0,       "s"},
    {0x13, 1,          0,       "mOhm"},
    {0x14, 1,          0,       "Ohm"},
    {0x15, 1,          0,       "kOhm"},
    {0x16, 0.1,        -40,     "^C"},
    {0x17, 0.01,       0,       "kPa"},
    {0x18, 0.0117,     0,       "kPa"},
    {0x19, 0.079,      0,       "kPa"},
    {0x1A, 1,          0,       "kPa"},
    {0x1B, 10,         0,       "kPa"},
    {0x1C, 0.01,       0,       "deg"},
    {0x1D, 0.5,        0,       "deg"},
    {0x1E, 3.05e-5,    0,       "lambda"},
    {0x1F, 0.05,       0,       "A/F ratio"},
    {0x20, 0.0039062,  0,       ""},          // odd on purpose: the standard has 0.00390625
    {0x21, 1,          0,       "mHz"},
    {0x22, 1,          0,       "Hz"},
    {0x23, 1,          0,       "kHz"},
    {0x24, 1,          0,       "counts"},
    {0x25, 1,          0,       "Km"},
    {0x26, 0.1,        0,       "V/ms"},      // odd on purpose: the standard has mV/ms
    {0x27, 0.01,       0,       "g/s"},
    {0x28, 1,          0,       "g/s"},
    {0x29, 1,          0,       ""},          // odd on purpose: the standard has 0.25 Pa/s
    {0x2A, 0.001,      0,       "kg/h/s"},    // odd on purpose: the standard has kg/h
    {0x2B, 1,          0,       "switches"},
    {0x2C, 0.01,       0,       "g/cyl"},
    {0x2D, 0.01,       0,       "mg/stroke"},
    {0x2E, 1,          0,       ""},          // "True" or "False" in place of a unit, see unit_of()
    {0x2F, 0.01,       0,       "%"},
    {0x30, 0.001526,   0,       "%"},
    {0x31, 0.001,      0,       "Lt"},
    {0x32, 3.05e-5,    0,       "mm"},        // odd on purpose: the standard has inches
    {0x33, 0.00024414, 0,       "lambda"},
    {0x34, 1,          0,       "min"},
    {0x35, 10,         0,       "ms"},
    {0x36, 0.01,       0,       "g"},
    {0x37, 0.1,        0,       "g"},
    {0x38, 1,          0,       "g"},
    {0x39, 1,          -327.68, "%"},         // odd on purpose: the standard has the factor 0.01

    {0x82, 0.1,        0,       ""},
    {0x83, 0.01,       0,       ""},
    {0x84, 0.001,      0,       ""},
    {0x85, 3.05e-5,    0,       ""},
    {0x86, 0.000305,   0,       ""},
    {0x8A, 0.122,      0,       "mV"},
    {0x8B, 0.001,      0,       "mV"},        // odd on purpose: the factor is that of volts
    {0x8C, 0.01,       0,       "mV"},        // odd on purpose: the factor is that of volts
    {0x8D, 0.00390625, 0,       "mA"},
    {0x8E, 0.001,      0,       "mA"},        // odd on purpose: the factor is that of amperes
    {0x90, 1,          0,       "ms"},
    {0x96, 0.1,        0,       "^C"},        // without the -40 of 0x16
    {0x9C, 0.01,       0,       "deg"},
    {0x9D, 0.5,        0,       "deg"},
    {0xA8, 1,          0,       "g/s"},
    {0xA9, 0.25,       0,       "Pa/s"},
    {0xAF, 0.01,       0,       "%"},
    {0xB0, 0.003052,   0,       "%"},
    {0xB1, 2,          0,       "mV"},        // odd on purpose: the standard has mV/s
    {0xFD, 0.001,      0,       "kPa"},
    {0xFE, 0.25,       0,       "Pa"},
};
// clang-format on

static_assert(std::adjacent_find(std::begin(scalings), std::end(scalings),
                                 [](const scaling& a, const scaling& b) { return a.uasid >= b.uasid; }) ==
              std::end(scalings));

constexpr unsigned boolean_uasid = 0x2E;
constexpr unsigned signed_bit = 0x80;

const scaling& scaling_of(unsigned uasid) {
    static constexpr scaling none{0, 1, 0, ""};
    const auto* found = std::lower_bound(std::begin(scalings), std::end(scalings), uasid,
                                         [](const scaling& row, unsigned key) { return row.uasid < key; });
    return found != std::end(scalings) && found->uasid == uasid ? *found : none;
}

double scaled(unsigned uasid, unsigned raw) {
    double value = raw;
    // Odd on purpose: a record has 16 bits, so that its signed values stay unsigned.
    if ((uasid & signed_bit) != 0 && raw > 0x7FFFF)
        value = static_cast<int>(raw | 0xFFFF8000);
    const scaling& row = scaling_of(uasid);
    return value * row.factor + row.offset;
}

QString unit_of(unsigned uasid, unsigned raw) {
    if (uasid == boolean_uasid)
        return raw != 0 ? QStringLiteral("True") : QStringLiteral("False");
    return QString::fromLatin1(scaling_of(uasid).unit);
}

} // namespace

QString CAN_scale_and_units(const QString& uasid, const QString& this_value, bool with_units) {
    const unsigned id = convertStr2Byte(uasid);
    const unsigned raw = convertStr2Byte(this_value);
    const QString number = with_decimals(scaled(id, raw), 6);
    return with_units ? number + QLatin1Char(' ') + unit_of(id, raw) : number;
}

QString grab_CAN_mode6_OBDMID_TESTID_description(const QString& identifier, bool is_OBDMID,
                                                 const text_resources& lists) {
    const auto lines = lists.get_array_from_resource(
        is_OBDMID ? QStringLiteral("OBDMID_CAN") : QStringLiteral("TID_CAN"), QStringLiteral("txt"));
    if (!lines)
        return not_available;
    const unsigned wanted = convertStr2Byte(identifier);
    const auto next = std::find_if(lines->begin(), lines->end(), [wanted](const QString& line) {
        return convertStr2Byte(QStringView(line).left(2)) > wanted;
    });
    if (next == lines->begin() || next == lines->end())
        return not_available;
    const QString& line = *std::prev(next);
    const qsizetype separator = line.indexOf(QLatin1Char('|'));
    return separator < 0 ? not_available : line.sliced(separator + 1);
}

void fixArrayForMode6(QStringList& obdmids) {
    constexpr unsigned position_in_range = 0x1F;
    obdmids.removeIf([](const QString& id) { return (convertStr2Byte(id) & position_in_range) == 0; });
}

} // namespace brivant
