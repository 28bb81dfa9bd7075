#include "app/preferences/prefs_connection_trial.h"

#include "app/screen/link_report.h"
#include "livedata/passport_words.h"

namespace brivant {

namespace {
constexpr int mark_size = 20;
}

prefs_connection_trial::prefs_connection_trial(const Ui::prefs& its_ui, const view_context& its_context,
                                               mac_toolies& its_toolies)
    : ui(its_ui), context(its_context), toolies(its_toolies),
      controller_(context.core.car, context.link, toolies, *this, context.core.diagnostics,
                  context.core.paths) {
    for (QLabel* label : {ui.test_title, ui.test_text})
        label->setTextFormat(Qt::PlainText); // texts of the adapter and the car
    ui.test_stop->hide();
    ui.test_result->hide();
    connect(ui.test_stop, &QPushButton::clicked, this, &prefs_connection_trial::stop);
    connect(&context.link, &adapter_link::condition_changed, this, &prefs_connection_trial::note_progress);
    controller_.operation_ended = [this](bool done) { ended(done); };
}

void prefs_connection_trial::start() {
    if (is_running())
        return;
    far = reached::nothing;
    was_stopped = false;
    is_another_car = false;
    told.clear();
    show_running(
        QStringLiteral("Asking the adapter and the car who they are. Older cars may need half a minute."));
    // Also on a link that is open already the adapter and the car are to answer now.
    context.link.set_up_next_time(true);
    told_before = context.core.car.times_told();
    note_progress();
    controller_.read_link_info();
}

void prefs_connection_trial::stop() {
    was_stopped = true;
    controller_.stop();
}

void prefs_connection_trial::forget() {
    if (is_running())
        stop();
    else
        ui.test_result->hide();
}

void prefs_connection_trial::look_changed() {
    const QString file = is_good ? QStringLiteral("ok_pic.png") : QStringLiteral("not_ok.png");
    ui.test_mark->setPixmap(context.frame.look().icon(file).pixmap(mark_size));
}

void prefs_connection_trial::note_progress() {
    if (!context.link.is_connected())
        return;
    far = std::max(far, context.core.adapter.adapter_known() ? reached::adapter : reached::link);
}

void prefs_connection_trial::ended(bool done) {
    if (done && context.core.car.times_told() != told_before)
        far = reached::car;
    is_good = far == reached::car;
    if (is_good)
        show_result(QStringLiteral("Adapter and car answer"),
                    report_link(context.link, context.core.car, toolies, false).details + about_adapter());
    else if (was_stopped)
        show_result(QStringLiteral("Stopped"), QStringLiteral("The test did not reach its end."));
    else
        show_failure();
    context.window.show_status(ui.test_title->text());
    Q_EMIT finished();
}

// What fast runs have found out about it.
QString prefs_connection_trial::about_adapter() const {
    const auto passport =
        passport_in(context.core.defaults.value(setting::adapter_passports), context.link.place().address());
    return passport ? u'\n' + sentences_of(*passport).join(u' ') : QString();
}

void prefs_connection_trial::show_failure() {
    const QString adapter = QStringLiteral("Adapter: %1\n").arg(context.core.adapter.interface_description());
    if (is_another_car)
        return show_result(
            QStringLiteral("Another car answers"),
            adapter + QStringLiteral("It reports other values than the current vehicle. Add or choose "
                                     "the right vehicle on the Vehicles tab, then test again."));
    switch (far) {
    case reached::nothing:
        return show_result(QStringLiteral("No link"),
                           has_no_device()
                               ? QStringLiteral("No Bluetooth device is chosen. Change... above lists them.")
                               : told);
    case reached::link:
        return show_result(
            QStringLiteral("There is a link, but no adapter answers"),
            QStringLiteral("A wrong address or port, another program or phone that holds the adapter, "
                           "or it has hung. Unplug it for ten seconds, plug it in and test again."));
    default:
        return show_result(QStringLiteral("The adapter answers, the car does not"),
                           adapter +
                               QStringLiteral("Turn the ignition on (the engine may stay off), press the "
                                              "adapter firmly into its socket, wait five seconds and test "
                                              "again."));
    }
}

bool prefs_connection_trial::has_no_device() const {
    const adapter_place& place = context.link.place();
    return place.interface_kind() == interface_bluetooth && place.bt_address().isEmpty();
}

void prefs_connection_trial::show_running(const QString& text) {
    show_result(QStringLiteral("Testing"), text);
    ui.test_mark->hide();
}

void prefs_connection_trial::show_result(const QString& title, const QString& text) {
    ui.test_title->setText(title);
    ui.test_text->setText(text);
    ui.test_text->setVisible(!text.isEmpty());
    ui.test_mark->setVisible(true);
    look_changed();
    ui.test_result->show();
}

// --- what the controller tells -----------------------------------------------------------------------------

void prefs_connection_trial::show_status(const QString& text) {
    context.window.show_status(text);
    note_progress();
    if (is_running() && !text.isEmpty())
        told = text;
}

// Why a link never came is told as a toast when the operation is over already.
void prefs_connection_trial::show_toast(const QString& text) {
    if (text.isEmpty() || was_stopped)
        return;
    told = text;
    if (is_running())
        show_running(text.simplified());
    else if (far == reached::nothing)
        ui.test_text->setText(text);
}

void prefs_connection_trial::show_busy(bool busy) {
    const bool had_focus = busy ? ui.test_start->hasFocus() : ui.test_stop->hasFocus();
    ui.test_start->setVisible(!busy);
    ui.test_stop->setVisible(busy);
    if (had_focus)
        (busy ? ui.test_stop : ui.test_start)->setFocus();
    ui.test_progress->set_running(busy);
    context.window.show_busy(busy);
}

// Why the car did not answer is said with the result.
void prefs_connection_trial::show_message(const QString&, const QString& text) {
    told = text;
}

void prefs_connection_trial::ask_yes_no(const QString& title, const QString& text,
                                        std::function<void(bool)> answer) {
    context.window.ask_yes_no(title, text, [this, answer = std::move(answer)](bool yes) {
        is_another_car = !yes;
        answer(yes);
    });
}

} // namespace brivant
