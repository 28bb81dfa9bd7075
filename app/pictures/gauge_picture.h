#pragma once

#include "charts/myGauge.h"
#include "livedata/live_results.h"

#include <QWidget>
#include <optional>

namespace brivant {

// Shows the gauge of one PID, as large as its room allows.
class gauge_picture : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize face{364, 286};

    explicit gauge_picture(QWidget* parent = nullptr);

    // The toolkit outlives it.
    void set_up(const mac_toolies& toolies);
    // Shows this PID, with its latest value.
    void show_sample(const sample_row& row);
    // A new value of the PID; draw_new() shows it.
    void set_value(const sample_row& row);
    void draw_new();

protected:
    void paintEvent(QPaintEvent*) override;

private:
    QRectF place() const;

    std::optional<myGauge> gauge;
    double value = 0;
    bool has_value = false; // until then the needle is at rest
    bool stale = false;
};

} // namespace brivant
