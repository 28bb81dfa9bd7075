#include "formats/export_text.h"
#include "formats/run_writers.h"

#include <cmath>

namespace brivant {

namespace {

constexpr double longest_between_points = 10'000; // ms
constexpr double same_moment = 1;                 // ms: what rounding may differ by

// A position that a track cannot hold is none.
bool is_on_earth(const geo_position& position) {
    return std::fabs(position.latitude) <= 90 && std::fabs(position.longitude) <= 180;
}

QString element(const char* name, const std::optional<double>& value) {
    if (!value || !std::isfinite(*value))
        return {};
    return QStringLiteral("<%1>%2</%1>").arg(QLatin1String(name), QString::fromLatin1(number_text(*value)));
}

// The positions of a run as a GPX 1.1 track. Where there was none for long a new segment begins. A mark
// names the point before it: waypoints would have to stand before the track. Speed and course, for which GPX
// 1.1 has no elements, stand in Garmin's extension of track points. What the receiver has told once is one
// point, at its own moment, however many sweeps share it.
class gpx_writer : public run_writer {
public:
    explicit gpx_writer(QIODevice& out) : run_writer(out) {}

private:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;
    void write_end() override;

    struct track_point {
        double ms;
        geo_position position;
    };
    void write_point();
    void end_segment();

    std::optional<track_point> latest; // not written yet: a mark may come
    std::optional<double> told_ms;     // when that of the point before was told
    QStringList names;                 // of it, or of the first
    bool in_segment = false;
};

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
    const double ms = sweep.ms + sweep.position->offset_ms;
    if (told_ms && std::fabs(ms - *told_ms) < same_moment)
        return;
    if (latest && ms - latest->ms > longest_between_points)
        end_segment();
    write_point();
    latest = track_point{ms, *sweep.position};
    told_ms = ms;
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
    const geo_position& at = latest->position;
    QString point = in_segment ? QString() : QStringLiteral("<trkseg>\n");
    in_segment = true;
    point += QStringLiteral("<trkpt lat=\"%1\" lon=\"%2\">")
                 .arg(QString::fromLatin1(number_text(at.latitude)),
                      QString::fromLatin1(number_text(at.longitude)));
    point += element("ele", at.altitude);
    point += QStringLiteral("<time>") + utc_text(head(), latest->ms) + QStringLiteral("</time>");
    if (!names.isEmpty())
        point +=
            QStringLiteral("<name>") + xml_text(names.join(QStringLiteral("; "))) + QStringLiteral("</name>");
    const QString movement = element("gpxtpx:speed", at.speed) + element("gpxtpx:course", at.track);
    if (!movement.isEmpty())
        point += QStringLiteral("<extensions><gpxtpx:TrackPointExtension>%1</gpxtpx:TrackPointExtension>"
                                "</extensions>")
                     .arg(movement);
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

} // namespace

std::unique_ptr<run_writer> make_gpx_writer(QIODevice& out) {
    return std::make_unique<gpx_writer>(out);
}

} // namespace brivant
