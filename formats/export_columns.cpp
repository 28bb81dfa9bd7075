#include "formats/export_columns.h"

#include <cmath>

namespace brivant {

namespace {

std::optional<double> of_position(const geo_position& position, export_column::kind what) {
    switch (what) {
    case export_column::kind::latitude: return position.latitude;
    case export_column::kind::longitude: return position.longitude;
    case export_column::kind::altitude: return position.altitude;
    case export_column::kind::speed: return position.speed;
    case export_column::kind::track: return position.track;
    case export_column::kind::error: return position.error;
    default: return position.offset_ms;
    }
}

std::optional<double> number_of(const timed_sweep& sweep, const export_column& column) {
    const std::size_t of = column.of;
    switch (column.what) {
    case export_column::kind::value: return of < sweep.values.size() ? sweep.values[of] : std::nullopt;
    case export_column::kind::offset:
        return of < sweep.offsets_ms.size() ? std::optional(sweep.offsets_ms[of]) : std::nullopt;
    default: return sweep.position ? of_position(*sweep.position, column.what) : std::nullopt;
    }
}

} // namespace

QList<export_column> export_columns(const run_head& head) {
    using kind = export_column::kind;
    QList<export_column> columns;
    for (qsizetype i = 0; i < head.columns.size(); ++i)
        columns.append({kind::value, i, head.columns[i].name, head.columns[i].unit});
    if (head.has_positions)
        columns += {{kind::latitude, 0, QStringLiteral("Latitude"), QStringLiteral("deg")},
                    {kind::longitude, 0, QStringLiteral("Longitude"), QStringLiteral("deg")},
                    {kind::altitude, 0, QStringLiteral("Altitude"), QStringLiteral("m")},
                    {kind::speed, 0, QStringLiteral("GPS speed"), QStringLiteral("m/s")},
                    {kind::track, 0, QStringLiteral("GPS heading"), QStringLiteral("deg")},
                    {kind::error, 0, QStringLiteral("GPS error"), QStringLiteral("m")},
                    {kind::position_offset, 0, QStringLiteral("GPS offset"), QStringLiteral("ms")}};
    for (qsizetype i = 0; head.has_offsets && i < head.columns.size(); ++i)
        columns.append(
            {kind::offset, i, head.columns[i].name + QStringLiteral(" offset"), QStringLiteral("ms")});
    return columns;
}

std::optional<double> cell_of(const timed_sweep& sweep, const export_column& column) {
    const auto number = number_of(sweep, column);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

} // namespace brivant
