#pragma once

#include "app/screen/screen_view.h"
#include "livedata/actions.h"
#include "ui_actions_view.h"

#include <QTimer>

namespace brivant {

// The head of the live-data screen: the mode, the button that starts and stops a run, the choice of its PIDs,
// how long it has lasted, how fast it is and what of it is stored.
class run_title : public QObject {
    Q_OBJECT

public:
    // The controller outlives it.
    run_title(QWidget& its_view, const Ui::actions_view& its_ui, const view_context& its_context,
              actions& its_controller);

    void start();
    void stop();
    // Everything but the figures.
    void show();
    void show_figures();

private:
    void connect_parts();
    void choose_pids();
    void store_runs_toggled(bool on);
    void choose_trigger();
    void show_choice_of_storing();
    void show_stored();
    void show_limit();
    void offer_more();
    template <typename T>
    void keep(const typed_setting<T>& which, T value);

    QWidget& view;
    const Ui::actions_view& ui;
    view_context context;
    actions& controller;
    live_results& results;
    QTimer second; // the time goes on while nothing arrives
};

} // namespace brivant
