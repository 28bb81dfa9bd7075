#include "base/refusals.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brivant {

namespace {

// clang-format off
constexpr std::array<std::pair<int, const char*>, 37> reasons{{
    {0x10, "refused without a reason"},
    {0x11, "service not supported"},
    {0x12, "request not supported"},
    {0x13, "request of the wrong length"},
    {0x14, "the answer would be too long"},
    {0x21, "busy"},
    {0x22, "conditions not right"},
    {0x24, "requests in the wrong order"},
    {0x25, "a part behind this ECU does not answer"},
    {0x26, "a fault keeps it from doing so"},
    {0x31, "request out of range"},
    {0x33, "access denied"},
    {0x35, "wrong key"},
    {0x36, "too many attempts"},
    {0x37, "to be asked again later"},
    {0x72, "its memory could not be written"},
    {0x78, "busy, the answer is to follow"},
    {0x7E, "request not supported in this session"},
    {0x7F, "service not supported in this session"},
    {0x81, "engine speed too high"},
    {0x82, "engine speed too low"},
    {0x83, "the engine is running"},
    {0x84, "the engine is not running"},
    {0x85, "the engine has not run for long enough"},
    {0x86, "temperature too high"},
    {0x87, "temperature too low"},
    {0x88, "vehicle speed too high"},
    {0x89, "vehicle speed too low"},
    {0x8A, "throttle or pedal too far open"},
    {0x8B, "throttle or pedal not open enough"},
    {0x8C, "the gearbox is not in neutral"},
    {0x8D, "no gear is engaged"},
    {0x8F, "the brake is not pressed"},
    {0x90, "the selector is not in park"},
    {0x91, "the torque converter clutch is locked"},
    {0x92, "voltage too high"},
    {0x93, "voltage too low"},
}};
// clang-format on

} // namespace

QString refusal_words(int code) {
    const auto found =
        std::find_if(reasons.begin(), reasons.end(), [code](const auto& row) { return row.first == code; });
    return found != reasons.end() ? QString::fromLatin1(found->second)
                                  : QStringLiteral("code %1").arg(
                                        QStringLiteral("%1").arg(code, 2, 16, QLatin1Char('0')).toUpper());
}

} // namespace brivant
