#include "persistence/stored_positions.h"

#include "base/anonymity.h"
#include "persistence/sqlite_connection.h"
#include "persistence/stored_moments.h"

#include <array>
#include <cmath>

namespace brivant {

namespace {

// The columns behind those of a timed row, each in its own unit.
enum position_column { offset_ms, latitude, longitude, altitude, speed, track, error };
constexpr int decimals = 3;
constexpr int decimals_of_degrees = 9;
constexpr double longest_offset = 3'600'000; // ms: a sweep is over before

QString number(const std::optional<double>& value, int its_decimals) {
    return value && std::isfinite(*value) ? QString::number(*value, 'f', its_decimals) : QString();
}

// An empty text of a number is NULL.
bool bind(sqlite_statement& row, int place, const QString& text) {
    return text.isEmpty() ? row.bind(place, QByteArray()) : row.bind(place, text);
}

std::optional<double> number_in(const QStringList& row, position_column column, double most) {
    bool is_number = false;
    const double value = row.value(chunk_offsets + 1 + column).toDouble(&is_number);
    return is_number && std::fabs(value) <= most ? std::optional(value) : std::nullopt;
}

} // namespace

QString position_text(const std::optional<geo_position>& where) {
    if (!where)
        return {};
    return QStringList{number(where->latitude, 7), number(where->longitude, 7), number(where->altitude, 1),
                       number(where->speed, 2)}
        .join(u',');
}

bool store_position(database& db, int log_id, int line_no, const geo_position& where) {
    const std::array numbers{number(where.offset_ms, 2),
                             number(where.latitude, decimals_of_degrees),
                             number(where.longitude, decimals_of_degrees),
                             number(where.altitude, decimals),
                             number(where.speed, decimals),
                             number(where.track, decimals),
                             number(where.error, decimals)};
    return db.change([&](sqlite_connection& connection) {
        sqlite_statement row(connection,
                             QStringLiteral("INSERT INTO BV_POSITIONS (LOG_ID, LINE_NUMBER, OFFSET_MS, "
                                            "LATITUDE, LONGITUDE, ALTITUDE, SPEED, TRACK, ERROR) "
                                            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        bool is_bound = row.is_prepared() && row.bind(1, log_id) && row.bind(2, line_no);
        for (int i = 0; i < static_cast<int>(numbers.size()); ++i)
            is_bound = is_bound && bind(row, 3 + i, numbers[static_cast<size_t>(i)]);
        return is_bound && row.step() == sqlite_statement::stepped::done;
    });
}

bool shows_positions(database& db, int log_id) {
    if (is_anonymous() ||
        db.retrieve_from_DB(QStringLiteral("SELECT 1 FROM sqlite_master WHERE name='BV_POSITIONS'"))
            .isEmpty())
        return false;
    return !db.retrieve_from_DB(
                  QStringLiteral("SELECT 1 FROM BV_POSITIONS WHERE LOG_ID=%1 LIMIT 1").arg(log_id))
                .isEmpty();
}

QString placed_chunks_statement(int log_id) {
    return timed_chunks_statement(
        log_id,
        QStringLiteral(", p.OFFSET_MS, p.LATITUDE, p.LONGITUDE, p.ALTITUDE, p.SPEED, p.TRACK, p.ERROR"),
        QStringLiteral(" LEFT JOIN BV_POSITIONS p ON p.LOG_ID=d.LOG_ID AND p.LINE_NUMBER=d.LINE_NUMBER"));
}

std::optional<geo_position> position_in(const QStringList& row) {
    const auto told = number_in(row, offset_ms, longest_offset);
    const auto its_latitude = number_in(row, latitude, 90);
    const auto its_longitude = number_in(row, longitude, 180);
    if (!told || !its_latitude || !its_longitude)
        return std::nullopt;
    constexpr double most = 1e6;
    return geo_position{.latitude = *its_latitude,
                        .longitude = *its_longitude,
                        .altitude = number_in(row, altitude, most),
                        .speed = number_in(row, speed, most),
                        .track = number_in(row, track, most),
                        .error = number_in(row, error, most),
                        .offset_ms = *told};
}

} // namespace brivant
