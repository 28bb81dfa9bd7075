#include "position/gpsd_line.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace brivant {

namespace {

constexpr int mode_2d = 2;
constexpr int mode_3d = 3;

std::optional<double> number_of(const QJsonValue& value, double smallest, double largest) {
    const double number = value.toDouble(qQNaN());
    return number >= smallest && number <= largest ? std::optional(number) : std::nullopt;
}

} // namespace

gpsd_line gpsd_line::of(const QByteArray& text) {
    const QJsonObject said = QJsonDocument::fromJson(text).object();
    const QString its_class = said["class"].toString();
    if (its_class.isEmpty())
        return {};
    const int mode = said["mode"].toInt(-1);
    if (its_class != QLatin1String("TPV") || mode < 0)
        return {.what = kind::other};

    gpsd_line report{.what = kind::no_fix, .device = said["device"].toString().left(200)};
    const auto latitude = number_of(said["lat"], -90, 90);
    const auto longitude = number_of(said["lon"], -180, 180);
    if ((mode != mode_2d && mode != mode_3d) || !latitude || !longitude)
        return report;
    report.what = kind::fix;
    report.time = said["time"].toString().left(40);
    report.where.latitude = *latitude;
    report.where.longitude = *longitude;
    constexpr double high = 100'000; // metres: what satellites for positioning still serve, and more
    if (mode == mode_3d)
        report.where.altitude = number_of(said[said.contains("altMSL") ? "altMSL" : "alt"], -high, high);
    constexpr double fast = 10'000; // metres per second
    report.where.speed = number_of(said["speed"], 0, fast);
    report.where.track = number_of(said["track"], 0, 360);
    report.where.error = number_of(said["eph"], 0, high);
    return report;
}

} // namespace brivant
