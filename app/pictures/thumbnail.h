#pragma once

#include "app/look/theme.h"
#include "charts/drawChartyItem.h"
#include "livedata/live_results.h"

#include <QAbstractButton>
#include <set>

namespace brivant {

// Where the samples of a run are shown, by their places in the sample set.
struct shown_samples {
    int chart = 0;
    std::set<int> group; // from two members on the chart plots them all
    int gauge_2 = -1;    // -1 for none

    bool is_group() const { return group.size() >= 2; }
    // The names of what the chart shows.
    QString chart_names(const live_results& results) const;
    bool in_chart(int index) const { return is_group() ? group.count(index) > 0 : index == chart; }

    // The chart shows that one alone.
    void choose(int index);
    // It joins the group, or leaves it; a group of one is the chart of that one.
    void toggle(int index);
};

// What the pictures of a run are drawn from.
struct run_pictures {
    const live_results& results;
    const mac_toolies& toolies;
    // For one frame: worked out once for all pictures.
    chart_labels labels;
    QStringList value_texts;
    bool has_gauges = true; // a PID can be put on the second gauge
};

// The small chart of one PID, its smallest and largest value below, and a mark where the
// other reading of the value says something else. A click makes it the chart, with Ctrl it
// joins or leaves the chart's group, a right click puts it on the second gauge. The keys are Enter,
// Ctrl+Enter and G; the menu key and the three dots open a menu of the same, with the
// switch between the two readings.
class thumbnail : public QAbstractButton {
    Q_OBJECT

public:
    // `low`: where the window has little height.
    static QSize whole_size(const QFont& font, bool low);
    void set_low(bool low);

    // `its_pictures` outlive it.
    thumbnail(const run_pictures& its_pictures, int its_index, QWidget* parent);

    void set_look(const theme& its_look);
    void mark(const shown_samples& shown);
    // Its row has a new value.
    void set_stale() { stale = true; }
    // Has it drawn anew, when it is seen and has something new.
    void draw_new();

    QSize sizeHint() const override { return whole_size(font(), is_low); }

Q_SIGNALS:
    void chart_chosen();
    void group_toggled();
    void gauge_chosen();
    // The standard's reading is to be shown, or no more.
    void reading_chosen(bool standard);
    // The arrow keys: -1 or 1.
    void neighbour_wanted(int direction);

protected:
    void paintEvent(QPaintEvent*) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    const sample_row& row() const { return pictures.results.these_samples.at(index); }
    int foot_height() const;
    QRect menu_place() const;
    void show_menu(const QPoint& at);
    void draw_chart(double ratio);
    void draw_foot(QPainter& painter);
    // The smallest and the largest value that came: "min 0  max 6500", "" while there is none.
    QString extremes() const;
    // "By SAE J1979: 15.000 V" where the two readings of the value differ, else "".
    QString other_reading() const;
    void tell_other_reading();

    const run_pictures& pictures;
    const int index;
    drawChartyItem item;
    theme look;
    bool charted = false;
    bool is_low = false;
    bool on_gauge_2 = false;
    bool stale = true;
};

} // namespace brivant
