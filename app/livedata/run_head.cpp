#include "app/livedata/run_head.h"

#include "app/screen/pid_chooser.h"

#include <QLocale>

namespace {

constexpr int tick_ms = 500;
const QString unknown = QStringLiteral("\u2013");

QString as_time(qint64 milliseconds) {
    const qint64 seconds = milliseconds / 1000;
    const auto two_digits = [](qint64 number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    return QStringLiteral("%1:%2:%3")
        .arg(two_digits(seconds / 3600), two_digits(seconds / 60 % 60), two_digits(seconds % 60));
}

} // namespace

run_head::run_head(QWidget& its_view, const view_context& its_context, actions& its_controller,
                   mac_toolies& toolies)
    : view(its_view), context(its_context), controller(its_controller), results(its_controller.results()),
      settings(context.core.defaults, context.core.state, context.delegate, toolies),
      mode(part_of<QComboBox>(view, "mode")), run_button(part_of<QPushButton>(view, "run")),
      pids_button(part_of<QPushButton>(view, "pids")), run_time(part_of<QLabel>(view, "run_time")),
      rate(part_of<QLabel>(view, "rate")), stored(part_of<QLabel>(view, "stored")),
      store_runs(part_of<QCheckBox>(view, "store_runs")), progress(part_of<busy_bar>(view, "progress")) {
    mode.addItems(actions::mode_names());
    mode.setCurrentIndex(controller.selected_index());
    second.setInterval(tick_ms);
    connect_parts();
}

void run_head::connect_parts() {
    connect(&mode, &QComboBox::activated, this, [this](int index) {
        controller.comboBoxSelectionDidChange(index);
        show();
    });
    connect(&run_button, &QPushButton::clicked, this, [this] { controller.is_running() ? stop() : start(); });
    connect(&pids_button, &QPushButton::clicked, this, &run_head::choose_pids);
    connect(&store_runs, &QCheckBox::toggled, this, &run_head::store_runs_toggled);
    connect(&second, &QTimer::timeout, this, &run_head::show_figures);
}

void run_head::start() {
    if (controller.is_running())
        return;
    controller.runLogs();
    show();
}

void run_head::stop() {
    if (controller.is_running())
        controller.stop();
}

void run_head::choose_pids() {
    auto* sheet = new pid_sheet(view, context);
    connect(sheet, &pid_sheet::changed, this, [this] {
        controller.sample_set_changed();
        show();
    });
    sheet->open();
}

void run_head::store_runs_toggled(bool on) {
    general_settings chosen = settings.stored();
    if (chosen.log_runs == on)
        return;
    chosen.log_runs = on;
    if (!settings.store(chosen))
        context.window.show_message(QString(),
                                    QStringLiteral("The choice holds until the program ends: the file %1 "
                                                   "cannot be written.")
                                        .arg(context.core.paths.settings_file));
    context.frame.settings_changed();
}

void run_head::show() {
    const theme& look = context.frame.look();
    const bool runs = controller.is_running();
    mode.setCurrentIndex(controller.selected_index());
    run_button.setIcon(look.icon(runs ? QStringLiteral("stop.gif") : QStringLiteral("start.gif")));
    run_button.setText(runs ? QStringLiteral("Stop (Esc)") : QStringLiteral("Start (F5)"));
    run_button.setAccessibleName(runs ? QStringLiteral("Stop the run") : QStringLiteral("Start the run"));
    const bool has_choice = results.mode == op_log_run;
    pids_button.setEnabled(has_choice);
    pids_button.setToolTip(has_choice
                               ? QStringLiteral("Choose what is asked for; a change ends the run")
                               : QStringLiteral("This mode has its own PIDs; Log Run has those you choose"));
    progress.set_running(runs && results.sample_cnt == 0);

    store_runs.setChecked(settings.stored().log_runs);
    store_runs.setEnabled(!runs);
    store_runs.setToolTip(runs ? QStringLiteral("Can be changed when the run has ended")
                               : QStringLiteral("Keeps the next runs for the Logs screen"));
    runs ? second.start() : second.stop();
    const QFont figures = theme::figures(view.font());
    for (QLabel* label : {&run_time, &rate, &stored})
        label->setFont(figures);
    show_figures();
}

void run_head::show_figures() {
    const bool any = controller.is_running() || results.sample_cnt > 0;
    const double a_second = results.times.sweeps_a_second();
    run_time.setText(as_time(results.times.duration_ms()));
    rate.setText(QStringLiteral("%1 sweeps/s")
                     .arg(a_second > 0 ? QString::number(a_second, 'f', a_second < 100 ? 1 : 0) : unknown));
    run_time.setVisible(any);
    rate.setVisible(any);
    stored.setVisible(any);
    if (results.sample_cnt > 0)
        progress.set_running(false);
    show_stored();
}

void run_head::show_stored() {
    const QString& problem = controller.storing_problem();
    stored.setText(results.is_stored && problem.isEmpty()
                       ? QStringLiteral("%1 stored").arg(QLocale::c().toString(results.log_sample_cnt))
                       : QStringLiteral("not stored"));
    stored.setToolTip(!problem.isEmpty() ? theme::plain_tool_tip(problem)
                      : results.is_stored
                          ? QStringLiteral("Sweeps of this run on the Logs screen")
                          : QStringLiteral("Runs are stored when the switch at the right is on"));
    theme::mark(stored, "warning", !problem.isEmpty());
}
