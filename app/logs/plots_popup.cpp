#include "app/logs/plots_popup.h"

#include "app/look/numbers.h"
#include "app/screen/reading_choice.h"
#include "base/string_table.h"
#include "persistence/export_names.h"
#include "persistence/log_files.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QShortcut>

namespace brivant {

namespace {

constexpr QSize first_size{1080, 680};
constexpr QSize smallest_size{640, 440};
constexpr int offset_of_next = 4 * theme::step;

} // namespace

plots_popup::plots_popup(QWidget& asked_by, const view_context& its_context, const log_header& log,
                         int column)
    : QWidget(asked_by.window(), Qt::Window), context(its_context), run(context.core, log),
      heading(fill(QStringLiteral("Plot - %@ : %@"), {log.type, format_date_str(log.time_stamp)})),
      shown{column, {}, -1}, ui(laid_out_in<Ui::plotsPopup>(*this)),
      saver(*this, context, export_file_name(log, false).section(u'.', 0, -2), [this] { return ui.picture; }),
      progress(this, true), toast(this), pace([this] { draw(); }) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(heading);
    setMinimumSize(smallest_size);
    setPalette(context.frame.look().palette());
    ui.chart->set_up(run.pictures());
    connect_parts();
    add_share();
    add_keys();
    restore_place();
    connect(&reading, &QTimer::timeout, this, &plots_popup::read_slice);
    reading.start(0);
    progress.show_text(QStringLiteral("The run is being read ..."));
}

void plots_popup::connect_parts() {
    connect(ui.chart, &plot_chart::changed, &pace, &frame_pace::ask);
    connect(&progress, &progress_overlay::stop_wanted, this, &plots_popup::escape);
    connect(ui.pan, &QScrollBar::valueChanged, this, [this](int first) {
        if (!filling)
            ui.chart->set_span(ui.chart->span().moved(first * pan_unit() - ui.chart->span().first));
    });
    connect(ui.zoom, &QSlider::valueChanged, this, [this](int place) {
        if (filling)
            return;
        const auto count = ui.chart->span().count_at(static_cast<double>(place) / ui.zoom->maximum());
        ui.chart->zoom_by(static_cast<double>(ui.chart->span().count) / static_cast<double>(count));
    });
    constexpr double factor = 2;
    connect(ui.zoom_in, &QToolButton::clicked, this, [this] { ui.chart->zoom_by(factor); });
    connect(ui.zoom_out, &QToolButton::clicked, this, [this] { ui.chart->zoom_by(1 / factor); });
    connect(ui.show_all, &QToolButton::clicked, this, [this] { ui.chart->set_span(run.whole()); });
    connect(ui.thumbs, &thumb_strip::chart_chosen, this, [this](int index) {
        shown.choose(index);
        mark();
    });
    connect(ui.thumbs, &thumb_strip::group_toggled, this, [this](int index) {
        shown.toggle(index);
        mark();
    });
    connect(ui.thumbs, &thumb_strip::reading_chosen, this, [this](bool standard) {
        choose_reading(context, standard);
        run.take_over_units();
        mark();
    });
    connect(&saver, &picture_saver::done, &toast, &toast_overlay::show_text);
    connect(&saver, &picture_saver::failed, &toast, &toast_overlay::show_text);
}

void plots_popup::add_share() {
    auto* menu = new QMenu(ui.share);
    const auto add = [&](const QString& text, QKeySequence::StandardKey key, void (picture_saver::*what)()) {
        QAction* action = menu->addAction(text);
        action->setShortcut(key);
        connect(action, &QAction::triggered, &saver, what);
        addAction(action); // its key holds without the menu
    };
    add(QStringLiteral("Copy"), QKeySequence::Copy, &picture_saver::copy);
    add(QStringLiteral("Save as PNG or PDF..."), QKeySequence::Save, &picture_saver::save);
    add(QStringLiteral("Print..."), QKeySequence::Print, &picture_saver::print);
    connect(ui.share, &QPushButton::clicked, menu,
            [this, menu] { menu->popup(ui.share->mapToGlobal(QPoint(0, ui.share->height()))); });
}

void plots_popup::add_keys() {
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &plots_popup::escape);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
}

// Nothing here is worth keeping half: a run whose reading is stopped closes too.
void plots_popup::escape() {
    if (toast.isVisible())
        toast.show_text(QString());
    else
        close();
}

// --- reading -----------------------------------------------------------------------------------------------

void plots_popup::read_slice() {
    const bool more = run.read_slice();
    const qint64 announced = run.series().announced();
    const QString read = grouped(run.rows());
    progress.set_progress(run.rows(), announced);
    progress.show_text(announced >= run.rows() && announced > 0
                           ? QStringLiteral("Reading %1 of %2 sweeps").arg(read, grouped(announced))
                           : QStringLiteral("Reading %1 sweeps").arg(read));
    if (more)
        return;
    reading.stop();
    run_is_read();
}

void plots_popup::run_is_read() {
    const stored_series& series = run.series();
    if (run.is_empty())
        return progress.show_end(series.problem().isEmpty() ? QStringLiteral("This log holds no data.")
                                                            : series.problem());
    progress.hide();
    ui.thumbs->rebuild(run.pictures());
    ui.thumbs->set_look(context.frame.look());
    ui.chart->show_run(run.whole(), run.origin());
    mark();
    ui.chart->setFocus();
    QStringList told;
    if (!series.problem().isEmpty())
        told += series.problem();
    else if (series.is_cut())
        told +=
            QStringLiteral("The run is longer than can be drawn: its first %1 sweeps are shown. Export holds "
                           "all of it.")
                .arg(grouped(run.rows()));
    if (series.columns_left_out() > 0)
        told += QStringLiteral("The run has %1 PIDs: the first %2 are drawn. Export holds all of them.")
                    .arg(series.pids().size() + series.columns_left_out())
                    .arg(series.pids().size());
    if (!told.isEmpty())
        toast.show_text(told.join(u'\n'));
}

// --- one frame ---------------------------------------------------------------------------------------------

void plots_popup::mark() {
    ui.thumbs->mark(shown);
    ui.chart->mark(shown);
    pace.ask();
}

void plots_popup::draw() {
    if (is_reading() || run.is_empty())
        return;
    const plot_span& span = ui.chart->span();
    if (ui.chart->shows_cursor())
        run.show_moment(ui.chart->cursor());
    else
        run.show_averages(span);
    show_controls();
    show_words();
    const double from = run.origin() + static_cast<double>(span.first);
    ui.chart->show_between(from, from + static_cast<double>(span.count), heading);
    ui.chart->set_stale();
    ui.chart->draw_new();
    for (int index = 0; index < run.series().pids().size(); ++index)
        ui.thumbs->sample_arrived(index);
    ui.thumbs->draw_new();
}

// A scroll bar counts up to two thousand million, a run may last longer.
qsizetype plots_popup::pan_unit() const {
    constexpr qsizetype most = 1'000'000'000;
    return ui.chart->span().length / most + 1;
}

void plots_popup::show_controls() {
    filling = true;
    const plot_span& span = ui.chart->span();
    const auto steps = [this](qsizetype way) { return static_cast<int>(way / pan_unit()); };
    ui.pan->setRange(0, steps(span.length - span.count));
    ui.pan->setPageStep(steps(span.count));
    ui.pan->setSingleStep(std::max(1, steps(span.count / 20)));
    ui.pan->setValue(steps(span.first));
    ui.zoom->setValue(qRound(span.slider() * ui.zoom->maximum()));
    ui.show_all->setEnabled(!span.is_all());
    filling = false;
}

void plots_popup::show_words() {
    const plot_span& span = ui.chart->span();
    const double moment = ui.chart->cursor();
    if (ui.chart->shows_cursor()) {
        const QString sweep = QStringLiteral("sweep %1").arg(grouped(run.sweep_at(moment)));
        ui.caption->set_text(
            run.is_timed() ? QStringLiteral("Values at %1, %2").arg(run.clock_of(moment, span.count), sweep)
                           : QStringLiteral("Values of ") + sweep);
        ui.times->setText(run.time_of(moment, true));
    } else {
        ui.caption->set_text(fill(QStringLiteral("Averages displayed - %d data points"),
                                  {QString::number(run.sweeps_in(span))}));
        const double from = run.origin() + static_cast<double>(span.first);
        const auto length = static_cast<double>(span.count);
        const QString begin = run.time_of(from, true);
        const QString end = run.time_of(from + length, false);
        ui.times->setText(
            begin.isEmpty()
                ? QString()
                : QStringLiteral("%1 to %2 (%3)").arg(begin, end, run.clock_of(length, span.count)));
    }
}

// --- the window itself -------------------------------------------------------------------------------------

void plots_popup::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange) { // the window it belongs to has other colours now
        setPalette(context.frame.look().palette());
        ui.thumbs->set_look(context.frame.look());
    } else if (event->type() == QEvent::ActivationChange && isActiveWindow() && !is_reading() &&
               run.take_over_units()) {
        mark();
    }
}

void plots_popup::closeEvent(QCloseEvent* event) {
    reading.stop();
    save_place();
    event->accept();
}

void plots_popup::save_place() {
    context.core.defaults.set(setting::plot_geometry, QString::fromLatin1(saveGeometry().toBase64()));
}

// A second window stands beside the first one, not on it.
void plots_popup::restore_place() {
    resize(first_size);
    const QString stored = context.core.defaults.value(setting::plot_geometry);
    if (!stored.isEmpty())
        restoreGeometry(QByteArray::fromBase64(stored.toLatin1()));
    const auto others = parentWidget()->findChildren<plots_popup*>(QString(), Qt::FindDirectChildrenOnly);
    const auto open = static_cast<int>(others.size()) - 1;
    if (open > 0)
        move(others.first()->pos() + QPoint(offset_of_next, offset_of_next) * open);
}

void plot_this_log(QWidget& asked_by, const view_context& context, const log_header& log, int column) {
    auto* window = new plots_popup(asked_by, context, log, column);
    window->show();
}

} // namespace brivant
