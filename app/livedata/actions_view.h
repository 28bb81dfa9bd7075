#pragma once

#include "app/livedata/run_title.h"
#include "app/look/frame_pace.h"
#include "app/sharing/picture_saver.h"
#include "livedata/actions.h"

namespace brivant {

// The live-data screen: a run as tiles, or as a large chart with two gauges and a thumbnail a PID; for the
// oxygen sensors also the picture of the exhaust. What a reply changes is noted as it comes, and drawn once a
// display frame.
class actions_view : public screen_view, private run_observer {
    Q_OBJECT

public:
    explicit actions_view(const view_context& its_context);
    ~actions_view() override;

    task_controller* controller() override { return &run_controller; }
    void start() override { head.start(); }
    void stop() override { head.stop(); }
    void show_busy(bool) override { head.show(); }
    void look_changed() override;
    void reload(part what) override;

protected:
    void showEvent(QShowEvent*) override { pace.ask(); }
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // run_observer
    void set_changed() override;
    void run_started() override;
    void run_ended() override;
    void sample_arrived(int index) override;
    void sweep_completed() override;
    void gap_begun() override;
    void o2_layout_known(int mask, const QString& header) override;
    void set_sensor_value(int sensor, const QString& this_value) override;

    void connect_parts();
    void restore_o2_picture();
    void add_keys();
    void choose_chart(int index);
    void toggle_group(int index);
    void choose_gauge(int index);
    void choose_view(int index);
    void mark();
    void fill_gauges();

    // One frame.
    void draw();
    void renew_pictures();
    void show_page();
    void zoom();
    bool has_samples() const;

    const Ui::actions_view ui;
    mac_toolies& toolies;
    live_results& results;
    brivant::actions run_controller; // a widget has actions too
    run_pictures pictures;
    shown_samples shown;
    QStringList shown_set; // the PIDs that `shown` counts
    enum view_of_run { as_tiles, as_chart, as_exhaust } view = as_chart;
    int shown_mode = 0;
    bool ran = false; // since the mode was chosen

    run_title head;
    picture_saver saver;
    frame_pace pace;
};

} // namespace brivant
