#pragma once

#include "app/pictures/chart_picture.h"
#include "charts/plot_span.h"

namespace brivant {

// The chart of a stored run, and how it is gone through. The wheel zooms about the pointer, with Shift it
// pans; dragging pans; the pointer reads the values of a moment. Keys: Left and Right move the moment, with
// Shift the chart; Page Up and Down move by a whole chart, Home and End to the ends; + and - zoom; 0 shows
// all.
class plot_chart : public chart_picture {
    Q_OBJECT

public:
    explicit plot_chart(QWidget* parent = nullptr);

    // Shows all of a run. Spans begin at 0, where its time is `origin`.
    void show_run(const plot_span& all, double origin);
    const plot_span& span() const { return shown_span; }
    void set_span(const plot_span& span);
    // The moment that is read, by the run's time; NaN for none.
    double cursor() const { return read_moment; }
    bool shows_cursor() const { return shown_span.contains(read_moment - origin); }
    void set_cursor(double ms);
    // By a factor (2: half as long), about the moment, else about the middle.
    void zoom_by(double factor);

Q_SIGNALS:
    // What is shown has changed: the span or the moment.
    void changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    double part_at(double x) const;
    double part_of_cursor() const;
    void zoom_about(double factor, double part);
    void step_cursor(int direction);
    void drag_to(double x);

    plot_span shown_span;
    double origin = 0;
    double read_moment = qQNaN();
    bool dragging = false;
    double drag_from = 0;
    plot_span span_before_drag;
    double wheel_rest = 0; // what a fine wheel has turned and was not moved yet
};

} // namespace brivant
