#pragma once

#include "app/look/frame_pace.h"
#include "app/look/progress_overlay.h"
#include "app/look/toast_overlay.h"
#include "app/pictures/plotted_run.h"
#include "app/sharing/picture_saver.h"
#include "ui_plotsPopup.h"

#include <QTimer>

namespace brivant {

// The window that draws a stored sampling run: the chart with a moment that can be read, and a thumbnail for
// each PID. It reads the run while it is open already, goes with the window it was asked for from, and is
// deleted when it is closed.
class plots_popup : public QWidget {
    Q_OBJECT

public:
    plots_popup(QWidget& asked_by, const view_context& its_context, const log_header& log, int column);

    bool is_reading() const { return reading.isActive(); }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void connect_parts();
    void add_share();
    void add_keys();
    void read_slice();
    void run_is_read();
    void mark();
    void escape();
    void save_place();
    void restore_place();

    // One frame.
    void draw();
    void show_controls();
    qsizetype pan_unit() const;
    void show_words();

    view_context context;
    plotted_run run;
    const QString heading;
    shown_samples shown;
    const Ui::plotsPopup ui;
    picture_saver saver;
    progress_overlay progress;
    toast_overlay toast;
    frame_pace pace;
    QTimer reading;
    bool filling = false; // the controls follow the chart
};

// Opens the window for a log, with that column of it as the chart. It belongs to the window of `asked_by`.
void plot_this_log(QWidget& asked_by, const view_context& context, const log_header& log, int column = 0);

} // namespace brivant
