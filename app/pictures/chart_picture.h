#pragma once

#include "app/pictures/thumbnail.h"

#include <optional>

namespace brivant {

// The large chart of a run.
class chart_picture : public QWidget {
    Q_OBJECT

public:
    explicit chart_picture(QWidget* parent = nullptr);

    // `its_pictures` outlive it.
    void set_up(const run_pictures& its_pictures);
    // The set or the choice among it has changed.
    void mark(const shown_samples& shown);
    // How many of the last sweeps are shown, -1 for all, and the title that says so.
    void zoom(qsizetype points, const QString& its_title);
    // The same from one moment of the run to another, in milliseconds.
    void show_between(double from, double to, const QString& its_title);
    // The axis of values has zero among them; else it is as long as what is visible.
    void begin_at_zero(bool on);
    void set_stale() { stale = true; }
    // The pointer reads the values of the moment that it is at.
    void read_with_pointer() { setMouseTracking(reads = true); }
    void draw_new();
    chart_labels work_out_labels() const { return item->work_out_labels(pictures->results.cur_log_points); }

protected:
    // Where the widget shows the series.
    QRectF plot_area() const;
    const sample_times& times() const { return pictures->results.cur_log_points.times(); }
    QList<drawChartyItem::dot> dots_at(double ms) const;
    void paintEvent(QPaintEvent*) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent*) override { stale = true; }
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void draw_chart(double ratio);
    void draw_marks(QPainter& painter) const;
    void draw_reading(QPainter& painter) const;

    const run_pictures* pictures = nullptr;
    std::optional<drawChartyItem> item;
    chart_labels fitted; // as the item was drawn with
    bool from_zero = false;
    double growth = 1; // of the item, by the font
    qsizetype shown_points = -1;
    double shown_from = 0;
    double shown_to = 0;
    QString title;
    bool stale = true;
    bool reads = false;
    std::optional<double> pointer_x;
};

} // namespace brivant
