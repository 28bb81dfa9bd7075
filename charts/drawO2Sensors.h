#pragma once

#include "charts/o2_layouts.h"

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

    // How the map of the next layout names its sensors: that of PID 13 (two banks) or 1D.
    void set_banks(o2_banks its_banks) { banks = its_banks; }
    // Draws the schematic for the sensors-present map. False when their number fits no layout: then no
    // sensors are drawn. `cur_sel_idx`: the sensor to highlight, -1 for none.
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
    // "S12"; "" for a sensor that the car lacks, and where none are drawn.
    QString name_of(int sensor) const;
    // The sensors whose voltage switches between lean and rich, a bit each; all until this is called. A
    // number of the others, the wide-range ones, says something else.
    void set_switching(unsigned sensors) {
        switching = sensors;
        image = {};
    }
    // -1 lean, 0 between or not known, 1 rich. Behind the converter a steady voltage is as it should be:
    // that of the first sensor of a bank alone says something of the mixture.
    int state_of(int sensor) const;
    // The sensors and what they read, in words.
    QString in_words() const;
    // The same of the sensors that the picture has no point for; "" when there are none.
    QString beside_the_picture() const;

    // The picture with the values of now; it is drawn when it is asked for.
    const QImage& imageRepresentation();

private:
    int highlighted() const { return chosen.value_or(cur_sel); }
    QString words_of(int sensor) const;
    void draw_schematic();
    void draw_values();

    double scale = 2;
    o2_picture_look look;
    int mask = 0;
    o2_banks banks = o2_banks::two;
    o2_layout layout;
    QStringList names; // of the car's sensors
    int cur_sel = -1;
    std::optional<int> chosen;
    QHash<int, QString> values;
    unsigned switching = ~0U;

    QImage image_without_snsr_vals; // null when it is to be drawn anew
    QImage image;                   // likewise
};

} // namespace brivant
