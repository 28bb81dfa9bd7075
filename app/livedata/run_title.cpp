#include "app/livedata/run_title.h"

#include "app/livedata/trigger_sheet.h"
#include "app/look/numbers.h"
#include "app/pids/pid_chooser.h"
#include "charts/value_text.h"
#include "livedata/fast_gain.h"
#include "livedata/passport_words.h"

#include <QShortcut>

namespace brivant {

namespace {

constexpr int tick_ms = 500;
const QString later = QStringLiteral("Can be changed when the run has ended");

QString rate_text(double a_second) {
    return a_second > 0 ? in_locale(QString::number(a_second, 'f', a_second < 100 ? 1 : 0))
                        : QStringLiteral("\u2013");
}

} // namespace

run_title::run_title(QWidget& its_view, const Ui::actions_view& its_ui, const view_context& its_context,
                     actions& its_controller)
    : view(its_view), ui(its_ui), context(its_context), controller(its_controller),
      results(its_controller.results) {
    for (const QString& name : actions::mode_names())
        ui.mode->add(name, QStringLiteral("What the car is asked; a change ends the run"));
    ui.mode->set_current(controller.selected_index());
    second.setInterval(tick_ms);
    ui.faster_row->hide();
    connect_parts();
}

void run_title::connect_parts() {
    connect(ui.mode, &segments::chosen, this, [this](int index) {
        controller.comboBoxSelectionDidChange(index);
        show();
    });
    connect(ui.run, &QPushButton::clicked, this, [this] { controller.is_running() ? stop() : start(); });
    connect(ui.pids, &QPushButton::clicked, this, &run_title::choose_pids);
    connect(ui.store_runs, &QCheckBox::toggled, this, &run_title::store_runs_toggled);
    connect(ui.faster, &QCheckBox::clicked, this, [this](bool on) {
        keep(setting::sampling_speed, static_cast<int>(on ? sampling_speed::fast : sampling_speed::usual));
    });
    connect(ui.store_now, &QPushButton::clicked, this, [this] {
        controller.store_run();
        show();
    });
    connect(ui.store_when, &QPushButton::clicked, this, &run_title::choose_trigger);
    auto* mark = new QShortcut(Qt::Key_M, &view);
    mark->setContext(Qt::WidgetWithChildrenShortcut);
    connect(mark, &QShortcut::activated, this, [this] { controller.put_mark(QString()); });
    connect(&second, &QTimer::timeout, this, [this] {
        show_figures();
        offer_more();
    });
}

void run_title::start() {
    if (controller.is_running())
        return controller.hurry(); // a car that is left alone is asked again
    controller.runLogs();
    show();
}

void run_title::stop() {
    if (controller.is_running())
        controller.stop();
}

void run_title::choose_pids() {
    auto* sheet = new pid_sheet(view, context);
    connect(sheet, &pid_sheet::changed, this, [this] {
        controller.sample_set_changed();
        show();
    });
    sheet->open();
}

void run_title::choose_trigger() {
    auto* sheet = new trigger_sheet(view, controller);
    connect(sheet, &trigger_sheet::changed, this, &run_title::show);
    sheet->open();
}

void run_title::store_runs_toggled(bool on) {
    keep(setting::log_runs, on);
}

template <typename T>
void run_title::keep(const typed_setting<T>& which, T value) {
    user_defaults& defaults = context.core.defaults;
    if (defaults.value(which) == value)
        return;
    defaults.set(which, value);
    if (!defaults.synchronise())
        context.window.show_message(
            QString(), defaults.problem() + QStringLiteral(" The choice holds until the program ends."));
    context.frame.settings_changed();
}

void run_title::show() {
    const theme& look = context.frame.look();
    const bool runs = controller.is_running();
    ui.mode->set_current(controller.selected_index());
    ui.run->setIcon(look.icon(runs ? QStringLiteral("stop.gif") : QStringLiteral("start.gif")));
    ui.run->setText(runs ? QStringLiteral("Stop (Esc)") : QStringLiteral("Start (F5)"));
    ui.run->setAccessibleName(runs ? QStringLiteral("Stop the run") : QStringLiteral("Start the run"));
    const bool has_choice = results.mode == op_log_run;
    ui.pids->setEnabled(has_choice);
    ui.pids->setToolTip(has_choice
                            ? QStringLiteral("Choose what is asked for; a change ends the run")
                            : QStringLiteral("This mode has its own values; Log Run has those you choose"));
    ui.progress->set_running(runs && results.sample_cnt == 0);

    show_choice_of_storing();
    show_limit();
    if (runs && results.sample_cnt == 0)
        ui.faster_row->hide();
    ui.faster->setEnabled(!runs);
    ui.faster->setToolTip(runs ? later : QStringLiteral("From the next start on; also in the preferences"));
    runs ? second.start() : second.stop();
    const QFont figures = theme::figures(view.font());
    for (QLabel* label : {ui.run_time, ui.rate, ui.stored})
        label->setFont(figures);
    show_figures();
}

void run_title::show_choice_of_storing() {
    const bool runs = controller.is_running();
    const auto& trigger = results.trigger;
    ui.store_now->setVisible(controller.can_store_run());
    ui.run->setEnabled(!controller.is_storing_run());
    ui.store_runs->setVisible(!trigger);
    ui.store_runs->setChecked(context.core.defaults.value(setting::log_runs));
    ui.store_runs->setEnabled(!runs);
    ui.store_runs->setToolTip(runs ? later : QStringLiteral("Keeps the next runs for the Logs screen"));
    ui.store_when->setText(trigger ? QStringLiteral("Store when %1...").arg(text_of(trigger->when))
                                   : QStringLiteral("When..."));
    ui.store_when->setEnabled(!runs && !results.these_samples.isEmpty());
    ui.store_when->setToolTip(
        runs ? later : QStringLiteral("Stores the next runs from the moment that a value is crossed"));
}

void run_title::show_figures() {
    const bool any = controller.is_running() || results.sample_cnt > 0;
    ui.run_time->setText(hours_minutes_seconds(results.times.duration_ms() / 1000));
    ui.rate->setText(
        QStringLiteral("%1 sweeps/s\n%2 values/s")
            .arg(rate_text(results.times.sweeps_a_second()), rate_text(results.times.values_a_second())));
    ui.run_time->setVisible(any);
    ui.rate->setVisible(controller.is_running());
    ui.stored->setVisible(any);
    if (results.sample_cnt > 0)
        ui.progress->set_running(false);
    show_stored();
}

// What limits the speed, as far as it was found out.
void run_title::show_limit() {
    const auto passport = controller.passport();
    const QString limit = passport ? limit_sentence(*passport) : QString();
    ui.rate->setToolTip(
        theme::plain_tool_tip(QStringLiteral("How often all PIDs are read, and how many values come") +
                              (limit.isEmpty() ? limit : QStringLiteral(".\n") + limit)));
}

// Once a run: a fast one would give much more.
void run_title::offer_more() {
    if (!controller.is_running() || ui.faster_row->isVisible())
        return;
    const QString words = fast_gain_sentence(controller);
    if (words.isEmpty())
        return;
    ui.faster_words->set_text(words);
    ui.faster->setChecked(false);
    ui.faster_row->show();
}

void run_title::show_stored() {
    const QString problem = controller.storing_problem();
    const QString stored = QStringLiteral("%1 stored").arg(QLocale::c().toString(results.log_sample_cnt));
    ui.stored->setText(!results.is_stored || (results.log_sample_cnt == 0 && !problem.isEmpty())
                           ? QStringLiteral("not stored")
                       : controller.sweeps_lost() > 0
                           ? QStringLiteral("%1, %2 lost").arg(stored).arg(controller.sweeps_lost())
                           : stored);
    ui.stored->setToolTip(!problem.isEmpty() ? theme::plain_tool_tip(problem)
                          : results.is_stored
                              ? QStringLiteral("Sweeps of this run on the Logs screen")
                              : QStringLiteral("Runs are stored when the switch at the right is on, or when "
                                               "Keep it is pressed behind their end"));
    theme::mark(*ui.stored, "warning", !problem.isEmpty());
}

} // namespace brivant
