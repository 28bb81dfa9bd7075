#pragma once

#include "charts/sample_matrix.h"
#include "tests/support/temporary_profile.h"
#include "toolkit/mac_toolies.h"

#include <QImage>
#include <cmath>

namespace brivant {

// A toolkit in metric units, and a run of PIDs.
struct chart_bench {
    temporary_profile profile;
    adapter_facts adapter;
    car_state car;
    mac_toolies toolies{adapter, car, profile.defaults, profile.db};
    sample_matrix matrix{[this](const QString& body) { return toolies.get_OBDVal(body); }};

    chart_bench() { profile.defaults.set(setting::metric_units, true); }

    // A run of PID 0D alone; a negative speed stands for a sweep without a value.
    void drive(const QList<int>& speeds) {
        matrix.start(1);
        for (qsizetype sweep = 0; sweep < speeds.size(); ++sweep) {
            if (sweep > 0)
                matrix.add_row();
            if (speeds[sweep] >= 0)
                matrix.set(0, QStringLiteral("410D%1").arg(speeds[sweep], 2, 16, QChar(u'0')).toUpper());
        }
    }
};

// The colour at a place of a picture with y growing upward, in logical pixels.
inline QColor colour_at(const QImage& picture, double x, double y) {
    const double ratio = picture.devicePixelRatio();
    return picture.pixelColor(static_cast<int>(x * ratio),
                              picture.height() - 1 - static_cast<int>(y * ratio));
}

} // namespace brivant
