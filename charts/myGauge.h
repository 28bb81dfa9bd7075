#pragma once

#include "charts/gauge_range.h"

#include <QImage>
#include <QPointF>
#include <QString>
#include <limits>

namespace brivant {

class mac_toolies;

// Where a needle points and what it is drawn through; y grows upward.
struct gauge_needle {
    double angle; // radians, counter-clockwise from the right
    QPointF tip;
    QPointF left;
    QPointF right;
};

// The needle for a value on the scale `min_val` to `max_val`, which lies between the angles `alpha_min` and
// `alpha_max`. A value beyond the scale points past its end; a minimum above 0 is not taken into account.
gauge_needle gauge_needle_for(QPointF centre, double this_val, double alpha_min, double alpha_max,
                              double min_val, double max_val, double needle_w, double needle_h);

// The dial of one PID; its name and its value stand outside of it. The face is drawn once a PID; a new value
// copies it and draws the needle on the copy.
class myGauge {
public:
    // The toolkit outlives the gauge.
    explicit myGauge(const mac_toolies& its_toolies) : toolies(its_toolies) {}

    // The face of a PID ("0C", or with its ECU "0C|7E8"), with the needle at rest.
    void initGauge(const QString& pid);
    // The same for another PID, or for other units.
    void swapCurGaugeBack(const QString& pid);
    // Pixels of the screen to one of the gauge's own (it is 364 wide): draws face and needle anew when it
    // differs.
    void set_pixel_ratio(double pixels);
    // A mark at the largest value so far, from the next needle on; NaN for none.
    void set_peak(double value) { peak = value; }
    // The value in the PID's unit. NaN takes the needle away.
    void draw_cur_needle_value(double value);

    const QImage& imageRepresentation() const { return image; }
    const QString& pid() const { return cur_PID; }
    double last_value() const { return last_OBD_val; }
    const QString& imageID() const { return image_id; }
    void set_imageID(const QString& id) { image_id = id; }

private:
    void draw_face();
    void work_out_base_gauge();
    void draw_gauge_needle_raw(double at_x, double at_y, double this_val, double alpha_min, double alpha_max,
                               double min_val, double max_val, double needle_w, double needle_h);

    const mac_toolies& toolies;
    QString cur_PID;
    QString image_id;
    double gaugeSize = 0;
    int range_lo = 0;
    int range_hi = 100;
    int range_scaling = 1;
    double ratio = 1;
    double peak = std::numeric_limits<double>::quiet_NaN();
    QImage image_without_needle;
    QImage image;
    double last_OBD_val = std::numeric_limits<double>::quiet_NaN();
};

} // namespace brivant
