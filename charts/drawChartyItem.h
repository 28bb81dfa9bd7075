#pragma once

#include "charts/series_plot.h"
#include "charts/value_text.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPolygon>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <limits>
#include <optional>
#include <set>

namespace brivant {

class mac_toolies;
class picture_painter;

// A PID's part of the labels: the ends of its values as "%f" texts, which stand the wrong way round while
// there is no value.
struct chart_label {
    QString name;
    QString unit;
    QString maximum;
    QString minimum;
    bool operator==(const chart_label&) const = default;
};
using chart_labels = QList<chart_label>;

// The picture of a run: the large chart of one PID or of a group of them, or the thumbnail of one. A redraw
// is work_out_labels, draw_grid, plot_array_list, imageRepresentation; what it costs depends on the size of
// the picture and not on the length of the run. Its x is the sweep, or in the window the time. Coordinates
// are logical pixels, y growing upward; the plot's baseline is y 0, and what lies below it (the row of sweep
// numbers or times) has a negative y.
class drawChartyItem {
public:
    // The toolkit outlives the item.
    explicit drawChartyItem(const mac_toolies& its_toolies) : toolies(its_toolies) {}

    // Makes the picture, empty. `device_pixel_ratio`: pixels of the screen to one of the window.
    void initWitdim(QSizeF dimensions, const QString& its_imageID, double device_pixel_ratio = 1);
    // The same with a picture's size and ratio.
    void initWithImage(const QImage& its_image, const QString& its_imageID);
    const QString& imageID() const { return image_id; }

    // The plot within the picture, in place of the one that draw_grid chooses. Null lets it choose again.
    void setDrawingSizes(const QRectF& sizes) { chosen_sizes = sizes; }
    const QRectF& drawingSizes() const { return drawSizes; }
    // The same in the picture's own coordinates, which grow downward.
    QRectF plot_area() const;

    void setThumbnail(bool thumbnail) { is_thumbnail = thumbnail; }
    void set_thumb_selected(bool selected) { is_thumb_selected = selected; }
    // The sample set: "0C", or with its ECU "0C|7E8".
    void use_this_pids(const QStringList& items) { _pid_logitems_list = items; }
    // The latest value texts, one a PID of the set ("850.00 RPM", "~").
    void update_cur_sample(const QStringList& value_texts) { cur_sample_set = value_texts; }
    // The PID to plot, by its place in the set.
    void set_item_2_plot(int index) { cur_item_2_PLOT = index; }
    // The group to plot together; it counts from two members on.
    void updateNoOfPlots(const std::set<int>& indexes) { cur_ITEMS_2_PLOT = indexes; }
    // How many of the last sweeps to plot; -1 for all, otherwise at least 2.
    void setNumberPointsToPlot(qsizetype count);
    // The sweeps before `row` are plotted, as many as that; -1 for those up to the last one.
    void plot_up_to(qsizetype row) { plotted_end = row; }

    // X is the moment of each value, with gaps as wide as they were, instead of the number of the sweep.
    void map_time(bool by_time) { maps_time = by_time; }
    // By time, from one moment of the run to another, in milliseconds, instead of the last sweeps; the same
    // twice for those again.
    void plot_between(double from, double to);

    bool isPlottingThisIndex(int index) const;
    // The value plotted last of the PID chosen; NaN before the first.
    double last_value() const { return last_OBD_val; }

    // One entry a PID of the set.
    chart_labels work_out_labels(const sample_matrix& matrix) const;
    // The same with the ends of what is shown now of the PIDs that are plotted, `from_zero` with zero among
    // it.
    chart_labels fitted(chart_labels labels, const sample_matrix& matrix, bool from_zero) const;
    // Background, frame, grid, axis values and title.
    void draw_grid(const chart_labels& labels, const QString& this_title);
    // The series, over the grid.
    void plot_array_list(const sample_matrix& matrix, const chart_labels& these_labels);
    const QImage& imageRepresentation() const { return image; }
    // By time, where the series are at a moment: each at its value then, or just before. In the coordinates
    // of plot_area().
    struct dot {
        QPointF place;
        QColor colour;
    };
    QList<dot> dots_at(double ms, const sample_matrix& matrix, const chart_labels& labels) const;
    // By time, how far from the left of plot_area() a moment lies; nothing for one that is not shown.
    std::optional<double> x_of(double ms, const sample_matrix& matrix) const;
    // By time, the moment that far from the left of plot_area(); nothing outside of it.
    std::optional<double> moment_at(double x, const sample_matrix& matrix) const;
    // Each series at a moment, "0:12.3   20.0 mph, 1371 RPM".
    QString values_at(double ms, const sample_matrix& matrix, const chart_labels& labels) const;

    // What the picture shows, in words, for those who cannot see it.
    QString in_words(const chart_labels& labels) const;

private:
    struct value_range {
        double minimum;
        double maximum;
        bool is_inverted() const { return maximum < minimum; }
    };

    plot_range shown_range(const sample_matrix& matrix) const;
    bool is_group() const { return !is_thumbnail && cur_ITEMS_2_PLOT.size() >= 2; }
    QList<int> plotted(const chart_labels& labels) const;
    static value_range rounded_range(const chart_label& label);
    static QColor setMyColor(int index);
    value_text latest(int index, const chart_label& label, double value) const;

    // How it looks (drawChartyItem_look.cpp)
    double foot() const;
    // In the middle of a pixel of the device, so that a line is one pixel and not two half ones.
    double crisp(double logical) const;
    static value_range axis_ends(const chart_label& label);
    void work_out_drawing_sizes(const chart_labels& labels, const QList<int>& columns);
    void draw_background(picture_painter& painter) const;
    void draw_grid_lines(picture_painter& painter, const value_range& ends) const;
    void print_axis_values_4_grid(picture_painter& painter, double cur_max, double cur_min,
                                  const chart_label& cur_label, double x_guide, int this_idx) const;
    static double get_width_of_axis_label(double cur_max, double cur_min);
    void print_sweep_numbers(picture_painter& painter, qsizetype first, qsizetype last,
                             bool has_points) const;
    // Over the grid, under the series.
    void draw_time_lines(picture_painter& painter, const plot_range& range, bool is_known) const;
    void display_value(picture_painter& painter, const chart_labels& labels, const QList<int>& columns,
                       const QList<series_summary>& values) const;
    // `values`: the latest one, and the extremes that came.
    void draw_value_box(picture_painter& painter, const QRectF& box, int column, const chart_label& label,
                        const series_summary& values) const;
    void display_value_4_thumbnail(picture_painter& painter, int column, const chart_label& label,
                                   double value) const;

    const mac_toolies& toolies;
    QImage image;
    QString image_id;
    QRectF drawSizes;
    QRectF chosen_sizes;
    bool is_thumbnail = false;
    bool is_thumb_selected = false;
    int cur_item_2_PLOT = 0;
    std::set<int> cur_ITEMS_2_PLOT;
    qsizetype SHOW_THESE_MANY_LAST_POINTS = -1;
    qsizetype plotted_end = -1;
    bool maps_time = false;
    double plotted_from = 0;
    double plotted_to = 0;
    QStringList _pid_logitems_list;
    QStringList cur_sample_set;
    double last_OBD_val = std::numeric_limits<double>::quiet_NaN();
};

} // namespace brivant
