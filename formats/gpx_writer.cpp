#include "formats/gpx_writer.h"

#include "formats/export_text.h"

#include <cmath>

namespace brivant {

namespace {

constexpr double longest_between_points = 10'000; // ms

// A position that a track cannot hold is none.
bool is_on_earth(const geo_position& position) {
    return std::fabs(position.latitude) <= 90 && std::fabs(position.longitude) <= 180;
}

QString element(const char* name, double value) {
    return QStringLiteral("<%1>%2</%1>").arg(QLatin1String(name), QString::fromLatin1(number_text(value)));
}

} // namespace

void gpx_writer::write_head() {
    put(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<gpx version=\"1.1\" creator=\"%1\" xmlns=\"http://www.topografix.com/GPX/1/1\" "
                       "xmlns:gpxtpx=\"http://www.garmin.com/xmlschemas/TrackPointExtension/v2\">\n"
                       "<metadata><desc>%2</desc><time>%3</time></metadata>\n"
                       "<trk><name>%4</name>\n")
            .arg(xml_text(about_program + head().version),
                 xml_text(about_run(head()).join(QStringLiteral("; "))), utc_text(head()),
                 xml_text(head().vehicle))
            .toUtf8());
}

void gpx_writer::write_sweep(const timed_sweep& sweep) {
    if (!sweep.position || !is_on_earth(*sweep.position))
        return;
    if (latest && sweep.ms - latest->ms > longest_between_points)
        end_segment();
    write_point();
    latest = track_point{sweep.ms, *sweep.position};
}

void gpx_writer::write_mark(const timed_mark& its_mark) {
    names += its_mark.text;
}

void gpx_writer::write_end() {
    end_segment();
    put("</trk>\n</gpx>\n");
}

void gpx_writer::write_point() {
    if (!latest)
        return;
    const auto& [latitude, longitude, altitude, speed] = latest->position;
    QString point = in_segment ? QString() : QStringLiteral("<trkseg>\n");
    in_segment = true;
    point +=
        QStringLiteral("<trkpt lat=\"%1\" lon=\"%2\">")
            .arg(QString::fromLatin1(number_text(latitude)), QString::fromLatin1(number_text(longitude)));
    if (altitude && std::isfinite(*altitude))
        point += element("ele", *altitude);
    point += QStringLiteral("<time>") + utc_text(head(), latest->ms) + QStringLiteral("</time>");
    if (!names.isEmpty())
        point +=
            QStringLiteral("<name>") + xml_text(names.join(QStringLiteral("; "))) + QStringLiteral("</name>");
    if (speed && std::isfinite(*speed))
        point += QStringLiteral("<extensions><gpxtpx:TrackPointExtension>%1</gpxtpx:TrackPointExtension>"
                                "</extensions>")
                     .arg(element("gpxtpx:speed", *speed));
    put((point + QStringLiteral("</trkpt>\n")).toUtf8());
    names.clear();
    latest.reset();
}

void gpx_writer::end_segment() {
    write_point();
    if (in_segment)
        put("</trkseg>\n");
    in_segment = false;
}

} // namespace brivant
