#include "app/pictures/plot_preview.h"

#include "app/look/numbers.h"

namespace brivant {

namespace {

constexpr qsizetype most_rows = 100'000;
constexpr int none = -1;

} // namespace

plot_preview::plot_preview(QWidget* parent) : QWidget(parent) {
    strip.setAccessibleName(QStringLiteral("Small plots of the selected run"));
    note.setProperty("role", QStringLiteral("small"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(&strip);
    column->addWidget(&note);
    column->addStretch();
    connect(&strip, &thumb_strip::chart_chosen, this, &plot_preview::chosen);
    connect(&strip, &thumb_strip::group_toggled, this, &plot_preview::chosen);
    connect(&strip, &thumb_strip::reading_chosen, this, &plot_preview::reading_chosen);
    connect(&reading, &QTimer::timeout, this, &plot_preview::read_slice);
    hide();
}

void plot_preview::show_log(program_core& core, const std::optional<log_header>& log) {
    reading.stop();
    strip.clear();
    run.reset();
    note.hide();
    setVisible(log.has_value());
    if (!log)
        return;
    run.emplace(core, *log, most_rows);
    reading.start(0);
}

void plot_preview::set_look(const theme& its_look) {
    look = its_look;
    strip.set_look(look);
}

void plot_preview::read_slice() {
    if (run->read_slice())
        return;
    reading.stop();
    if (run->is_empty())
        return hide();
    run->show_averages(run->whole());
    note.setText(QStringLiteral("The first %1 sweeps").arg(grouped(run->rows())));
    note.setVisible(run->series().is_cut());
    strip.rebuild(run->pictures());
    strip.set_look(look);
    strip.mark({none, {}, none});
}

} // namespace brivant
