#pragma once

#include "formats/run_writer.h"

namespace brivant {

// The positions of a run as a GPX 1.1 track. Where there was none for long a new segment begins. A mark
// names the point before it: waypoints would have to stand before the track. Speed and course, for which GPX
// 1.1 has no elements, stand in Garmin's extension of track points. What the receiver has told once is one
// point, at its own moment, however many sweeps share it.
class gpx_writer : public run_writer {
public:
    explicit gpx_writer(QIODevice& out) : run_writer(out) {}

protected:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;
    void write_end() override;

private:
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

} // namespace brivant
