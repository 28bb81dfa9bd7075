#include "app/screen/operation_head.h"

namespace brivant {

operation_head::operation_head(const parts& its_parts, const view_context& its_context,
                               readCodes& its_controller, const QList<int>& its_operations)
    : ui(its_parts), context(its_context), controller(its_controller), operations(its_operations) {
    connect(&ui.stop, &QPushButton::clicked, this, [this] { controller.stop(); });
    ui.stop.hide();
}

bool operation_head::runs_here() const {
    return controller.is_running() && operations.contains(controller.cur_op());
}

QString operation_head::waiting_words() const {
    return context.link.is_connected() ? QStringLiteral("The car is being asked ...")
                                       : QStringLiteral("The link is being opened ...");
}

QString operation_head::what_runs() const {
    switch (controller.cur_op()) {
    case op_read_codes: return QStringLiteral("The codes are being read");
    case op_clear_codes: return QStringLiteral("The codes are being cleared");
    case op_permanent: return QStringLiteral("The permanent codes are being read");
    case op_pending_freeze: return QStringLiteral("The pending codes are being read");
    case op_vehicle_info: return QStringLiteral("The vehicle is being read");
    case op_mode6: return QStringLiteral("Mode 6 is being read");
    case op_misfire: return QStringLiteral("The misfire counts are being read");
    case op_o2_tests: return QStringLiteral("The O2 tests are being read");
    case op_extras: return QStringLiteral("The extras are being read");
    default: return QStringLiteral("The link is being opened");
    }
}

void operation_head::start(const std::function<void()>& run) {
    if (controller.is_running())
        return; // one at a time; the note tells which
    run();
}

void operation_head::show(const QString& summary) {
    const bool here = runs_here();
    const bool elsewhere = runs_elsewhere();
    const bool had_focus = here ? ui.read.hasFocus() : ui.stop.hasFocus();
    ui.read.setVisible(!here);
    ui.read.setEnabled(!elsewhere);
    ui.stop.setVisible(here);
    if (had_focus)
        (here ? ui.stop : ui.read).setFocus();
    const QString other = elsewhere ? what_runs() + QStringLiteral("; Esc stops it.") : QString();
    ui.read.setToolTip(other);
    ui.note.setText(elsewhere ? other : summary);
    ui.progress.set_running(here);
    show_progress();
}

void operation_head::show_progress() {
    const diagnostic_results& results = controller.results;
    if (runs_here())
        ui.progress.set_progress(results.progress_done, results.progress_total);
}

} // namespace brivant
