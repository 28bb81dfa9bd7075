#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <optional>

namespace brivant {

// The colours of the picture that go with the ground it is shown on.
struct o2_picture_look {
    QColor ink{0x24303b};
    QColor muted{0x5a6672};
    QColor plate{0xffffff}; // behind the values
    QColor accent{0x14796f};
    bool operator==(const o2_picture_look&) const = default;
};

// The schematic of the exhaust, drawn off screen: engine block, banks, pipes and converters, and for every
// oxygen sensor a dot, its name and its latest value. The picture's own coordinates are 460 by 215 with y
// upward. Sensors are counted as in the sample set: from 0, in the order of the bits of the sensors-present
// map.
class drawO2Sensors {
public:
    static constexpr int width = 460;
    static constexpr int height = 215;

    // Makes the picture anew: no sensors, no values.
    void initO2Charty();
    // Pixels to a unit of the picture's coordinates, and the colours.
    void set_look(double pixels_per_unit, const o2_picture_look& its_look);

    // Draws the schematic for the sensors-present map of PID 13. False when their number fits no layout: then
    // no sensors are drawn. `cur_sel_idx`: the sensor to highlight, -1 for none.
    bool work_out_sensor_lay_out(int mask, int cur_sel_idx);
    // Writes a value ("0.455"; one with "nan" in it is no value). `this_sel_idx` is highlighted unless
    // select() chose another.
    void set_sensor_value(int sensor, int this_sel_idx, const QString& this_value);
    // The sensor that the person chose to look at.
    void select(int sensor);

    int sensor_mask() const { return mask; }
    int sensor_count() const;
    // The dots as "x|y", in the order of the layout.
    QStringList dots_pos() const;
    // The sensor whose dot is at this place, -1 for none.
    int sensor_at(QPointF place) const;
    // "S12", "" for a sensor that the layout lacks.
    QString name_of(int sensor) const;
    // The sensors whose voltage switches between lean and rich, a bit each; all until this is called. A
    // number of the others, the wide-range ones, says something else.
    void set_switching(unsigned sensors) {
        switching = sensors;
        image = {};
    }
    // -1 lean, 0 between or not known, 1 rich.
    int state_of(int sensor) const;
    // The sensors and what they read, in words.
    QString in_words() const;

    // The picture with the values of now; it is drawn when it is asked for.
    const QImage& imageRepresentation();

private:
    int highlighted() const { return chosen.value_or(cur_sel); }
    void draw_schematic();
    void draw_values();

    double scale = 2;
    o2_picture_look look;
    int mask = 0;
    int cur_sel = -1;
    std::optional<int> chosen;
    QHash<int, QString> values;
    unsigned switching = ~0U;

    QImage image_without_snsr_vals; // null when it is to be drawn anew
    QImage image;                   // likewise
};

} // namespace brivant
