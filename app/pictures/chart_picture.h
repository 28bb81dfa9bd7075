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
    // How many sweeps before row `end` (-1: of the last ones) are shown, -1 for all, and the title that says
    // so.
    void zoom(qsizetype points, const QString& its_title, qsizetype end = -1);
    void set_stale() { stale = true; }
    void draw_new();
    chart_labels work_out_labels() const { return item->work_out_labels(pictures->results.cur_log_points); }

protected:
    // Where the widget shows the series.
    QRectF plot_area() const { return item->plot_area(); }
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override { stale = true; }

private:
    void draw_chart(double ratio);

    const run_pictures* pictures = nullptr;
    std::optional<drawChartyItem> item;
    qsizetype shown_points = -1;
    qsizetype shown_end = -1;
    QString title;
    bool stale = true;
};

} // namespace brivant
