// Any text as a line of gpsd, and as where it answers: what is taken for a fix is on the earth.

#include "position/gpsd_line.h"
#include "position/gpsd_place.h"
#include "tests/fuzz/must_hold.h"

#include <cmath>
#include <cstdint>

namespace brivant {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const gpsd_line said = gpsd_line::of(text);
    must_hold(std::fabs(said.where.latitude) <= 90 && std::fabs(said.where.longitude) <= 180,
              "a fix is on the earth");
    for (const auto& number : {said.where.altitude, said.where.speed, said.where.track, said.where.error})
        must_hold(!number || std::isfinite(*number), "a value is a number");
    must_hold(said.device.size() <= 200 && said.time.size() <= 40, "a text is bounded");
    const auto place = gpsd_place::of(QString::fromUtf8(text));
    must_hold(!place || (place->port > 0 && !place->host.isEmpty()), "a place can be asked");
    return 0;
}

} // namespace brivant
