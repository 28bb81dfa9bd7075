#include "app/screen/operation_head.h"

operation_head::operation_head(QWidget& view, const view_context& its_context, readCodes& its_controller,
                               const QList<int>& its_operations)
    : context(its_context), controller(its_controller), operations(its_operations),
      read_button(part_of<QPushButton>(view, "read")), stop_button(part_of<QPushButton>(view, "stop")),
      note(part_of<QLabel>(view, "note")), progress(part_of<busy_bar>(view, "progress")) {
    connect(&stop_button, &QPushButton::clicked, this, [this] { controller.stop(); });
    stop_button.hide();
}

bool operation_head::runs_here() const {
    return controller.is_running() && operations.contains(context.core.state.cur_op);
}

QString operation_head::waiting_words() const {
    return context.delegate.is_connected() ? QStringLiteral("The car is being asked ...")
                                           : QStringLiteral("The link is being opened ...");
}

QString operation_head::what_runs() const {
    switch (context.core.state.cur_op) {
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
    const bool had_focus = here ? read_button.hasFocus() : stop_button.hasFocus();
    read_button.setVisible(!here);
    read_button.setEnabled(!elsewhere);
    stop_button.setVisible(here);
    if (had_focus)
        (here ? stop_button : read_button).setFocus();
    const QString other = elsewhere ? what_runs() + QStringLiteral("; Esc stops it.") : QString();
    read_button.setToolTip(other);
    note.setText(elsewhere ? other : summary);
    progress.set_running(here);
    show_progress();
}

void operation_head::show_progress() {
    const diagnostic_results& results = controller.results();
    if (runs_here())
        progress.set_progress(results.progress_done, results.progress_total);
}
