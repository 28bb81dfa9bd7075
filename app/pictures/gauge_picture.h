#pragma once

#include "charts/myGauge.h"
#include "charts/value_text.h"
#include "livedata/live_results.h"

#include <QWidget>
#include <optional>

namespace brivant {

// Shows the gauge of one PID, as large as its room allows, with its name above and its value below.
class gauge_picture : public QWidget {
    Q_OBJECT

public:
    explicit gauge_picture(QWidget* parent = nullptr);

    // The toolkit outlives it.
    void set_up(const mac_toolies& toolies);
    // Shows a PID of the set, with its latest value and the largest one so far.
    void show_sample(const live_results& results, int index);
    // A new value of the PID; draw_new() shows it.
    void set_value(const live_results& results, int index);
    void draw_new();
    // How wide it is best when it is that high.
    int width_for(int height) const;

protected:
    void paintEvent(QPaintEvent*) override;

private:
    int name_height() const;
    int value_height(int whole) const;
    QRectF dial_place() const;
    void draw_words(QPainter& painter, const QRectF& dial) const;

    std::optional<myGauge> gauge;
    QString name;
    value_text shown;
    double value = 0;
    bool has_value = false; // until then the needle is at rest
    bool stale = false;
};

} // namespace brivant
