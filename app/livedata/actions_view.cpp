#include "app/livedata/actions_view.h"

#include "app/livedata/words_before_values.h"
#include "app/screen/reading_choice.h"
#include "charts/picture.h"
#include "livedata/second_value.h"

#include <QEvent>
#include <QShortcut>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr int empty_icon_size = 32;
constexpr int narrowest_gauges = 144;
constexpr int low_gauges = 300;
constexpr int low_screen = 480;
constexpr double fewest_shown = 20; // sweeps, by the zoom

void keep_room(QWidget& widget, bool also_hidden) {
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(also_hidden);
    widget.setSizePolicy(policy);
}

} // namespace

actions_view::actions_view(const view_context& its_context)
    : screen_view(its_context), ui(laid_out_in<Ui::actions_view>(*this)), toolies(context.core.toolies),
      results(context.core.live),
      run_controller(context.core.car, context.link, toolies, context.window, context.core.defaults,
                     context.core.clock, results, context.core.paths),
      pictures{results, toolies, {}, {}}, head(*this, ui, context, run_controller),
      saver(*this, context, QStringLiteral("live_data"), [this] { return ui.chart_stack->currentWidget(); }),
      pace([this] {
          if (isVisible())
              draw();
      }) {
    ui.chart->set_up(pictures);
    ui.chart->read_with_pointer();
    ui.gauge_1->set_up(toolies);
    ui.gauge_2->set_up(toolies);
    ui.gauges->installEventFilter(this);
    keep_room(*ui.gauge_2, true);
    ui.zoom->setValue(ui.zoom->maximum());
    connect_parts();
    add_keys();
    begin_at(*ui.run);
    run_controller.set_observer(this);
    run_controller.locate_by(&context.core.position);
    if (results.o2_mask != 0)
        restore_o2_picture();
}

// The widgets go last, and must not ask a controller that is gone.
actions_view::~actions_view() {
    run_controller.set_observer(nullptr);
}

// From what a run has read that outlived the screen.
void actions_view::restore_o2_picture() {
    o2_layout_known(results.o2_mask, results.o2_header);
    for (int sensor = 0; sensor < results.these_samples.size(); ++sensor) {
        const sample_row& row = results.these_samples.at(sensor);
        if (!row.value.isEmpty())
            set_sensor_value(sensor, QString::number(row.latest, 'f', 3));
    }
}

void actions_view::connect_parts() {
    connect(ui.thumbs, &thumb_strip::chart_chosen, this, &actions_view::choose_chart);
    connect(ui.thumbs, &thumb_strip::group_toggled, this, &actions_view::toggle_group);
    connect(ui.thumbs, &thumb_strip::gauge_chosen, this, &actions_view::choose_gauge);
    connect(ui.thumbs, &thumb_strip::reading_chosen, this,
            [this](bool standard) { choose_reading(context, standard); });
    connect(ui.o2, &o2_picture::sensor_chosen, this, &actions_view::choose_chart);
    ui.views->add(QStringLiteral("Dashboard"), QStringLiteral("A tile a value"));
    ui.views->add(QStringLiteral("Chart"), QStringLiteral("The values over the time"));
    ui.views->add(QStringLiteral("Exhaust"), QStringLiteral("The oxygen sensors where they sit"));
    connect(ui.views, &segments::chosen, this, &actions_view::choose_view);
    connect(ui.tiles, &dashboard::chart_chosen, this, [this](int index) {
        choose_chart(index);
        choose_view(as_chart);
    });
    connect(ui.from_zero, &QCheckBox::toggled, this, [this](bool on) {
        ui.chart->begin_at_zero(on);
        pace.ask();
    });
    connect(ui.copy_picture, &QToolButton::clicked, &saver, &picture_saver::copy);
    connect(ui.save_picture, &QToolButton::clicked, &saver, &picture_saver::save);
    connect(&saver, &picture_saver::done, this,
            [this](const QString& what) { context.window.show_toast(what); });
    connect(&saver, &picture_saver::failed, this, [this](const QString& sentence) {
        context.frame.tell({QStringLiteral("The picture was not saved"), sentence});
    });
    connect(ui.zoom, &QSlider::valueChanged, this, [this] {
        ui.chart->set_stale();
        pace.ask();
    });
}

void actions_view::add_keys() {
    const auto on_key = [this](QKeySequence::StandardKey key, QToolButton* button) {
        auto* shortcut = new QShortcut(key, this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, button, &QToolButton::click);
    };
    on_key(QKeySequence::Copy, ui.copy_picture);
    on_key(QKeySequence::Save, ui.save_picture);
}

void actions_view::look_changed() {
    const theme& look = context.frame.look();
    ui.empty_icon->setPixmap(look.icon(QStringLiteral("actions.gif")).pixmap(empty_icon_size));
    ui.o2->set_look(look);
    head.show();
    set_changed();
    ui.thumbs->set_look(look);
    ui.tiles->set_look(look);
    draw();
}

// The other of the two readings is shown from now on; the run may go on.
void actions_view::reload(part what) {
    if (what != part::reading)
        return;
    read_again(results, toolies);
    if (results.o2_mask != 0)
        restore_o2_picture();
    set_changed();
}

// What stores stands beside the mode where there is room, else below.
void actions_view::resizeEvent(QResizeEvent* event) {
    screen_view::resizeEvent(event);
    const int wanted = ui.mode->sizeHint().width() + ui.run->sizeHint().width() +
                       ui.pids->sizeHint().width() + ui.store_group->sizeHint().width() + 8 * theme::step;
    QHBoxLayout* row = wanted > width() ? ui.store_row : ui.head;
    if (row->indexOf(ui.store_group) < 0)
        row->addWidget(ui.store_group, 0, Qt::AlignRight);
    ui.thumbs->set_low(height() < qRound(low_screen * growth_for(font())));
}

// The gauges are as wide as their height asks for; the chart takes the rest.
bool actions_view::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui.gauges && event->type() == QEvent::Resize) {
        // In a low window side by side.
        const int height = ui.gauges->height();
        const bool is_low = height < qRound(low_gauges * growth_for(font()));
        ui.gauge_column->setDirection(is_low ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
        const int wanted = is_low ? 2 * ui.gauge_1->width_for(height) + theme::step
                                  : ui.gauge_1->width_for((height - theme::step) / 2);
        const int least = qRound(narrowest_gauges * growth_for(font()));
        ui.gauges->setFixedWidth(std::clamp(wanted, least, std::max(least, width() / 3)));
    }
    return screen_view::eventFilter(watched, event);
}

// --- what a run tells --------------------------------------------------------------------------------------

void actions_view::set_changed() {
    QStringList set;
    for (const sample_row& row : std::as_const(results.these_samples))
        set += row.pid;
    ui.o2->picture().set_switching(switching_sensors(set));
    if (set != shown_set) {
        if (!shown_set.isEmpty()) // else it is that of a run that outlived the screen
            results.gauge_2_idx = 1;
        shown_set = set;
        shown = {};
        ran = false;
        ui.thumbs->rebuild(pictures);
        ui.thumbs->set_look(context.frame.look());
        ui.tiles->rebuild(pictures);
        ui.tiles->set_look(context.frame.look());
    }
    if (std::exchange(shown_mode, results.mode) != results.mode) {
        if (results.mode == op_o2_layout)
            view = as_exhaust;
        else if (view == as_exhaust)
            view = as_chart;
    }
    mark();
}

void actions_view::run_started() {
    ran = false;
    ui.tiles->set_silent_since({});
    head.show();
    pace.ask();
}

void actions_view::run_ended() {
    ran = true;
    head.show();
    pace.ask();
}

void actions_view::sweep_completed() {
    ui.tiles->set_silent_since({});
    pace.ask();
}

void actions_view::gap_begun() {
    ui.tiles->set_silent_since(QTime::currentTime());
    pace.ask();
}

void actions_view::sample_arrived(int index) {
    ui.thumbs->sample_arrived(index);
    ui.tiles->sample_arrived(index);
    if (shown.in_chart(index))
        ui.chart->set_stale();
    if (index == shown.chart)
        ui.gauge_1->set_value(results, index);
    if (index == shown.gauge_2)
        ui.gauge_2->set_value(results, index);
    pace.ask();
}

void actions_view::o2_layout_known(int mask, const QString&) {
    ui.o2->picture().set_banks(results.o2_order);
    ui.o2->picture().work_out_sensor_lay_out(mask, shown.chart);
}

void actions_view::set_sensor_value(int sensor, const QString& this_value) {
    constexpr int selected_by_run = 1;
    ui.o2->picture().set_sensor_value(sensor, selected_by_run, this_value);
}

// --- what the person chooses -------------------------------------------------------------------------------

void actions_view::choose_chart(int index) {
    if (index < 0 || index >= results.these_samples.size())
        return;
    shown.choose(index);
    mark();
}

void actions_view::toggle_group(int index) {
    shown.toggle(index);
    mark();
}

void actions_view::choose_gauge(int index) {
    results.gauge_2_idx = index;
    mark();
}

void actions_view::choose_view(int index) {
    view = static_cast<view_of_run>(index);
    ui.chart->set_stale();
    pace.ask();
}

void actions_view::mark() {
    const bool has_second = results.gauge_2_idx >= 0 && results.gauge_2_idx < results.these_samples.size();
    shown.gauge_2 = has_second ? results.gauge_2_idx : -1;
    ui.thumbs->mark(shown);
    ui.chart->mark(shown);
    renew_pictures();
    ui.o2->picture().select(shown.chart);
    fill_gauges();
    pace.ask();
}

void actions_view::fill_gauges() {
    const bool has_first = shown.chart < results.these_samples.size();
    ui.gauge_1->setVisible(has_first);
    ui.gauge_2->setVisible(shown.gauge_2 >= 0);
    if (has_first)
        ui.gauge_1->show_sample(results, shown.chart);
    if (shown.gauge_2 >= 0)
        ui.gauge_2->show_sample(results, shown.gauge_2);
}

// --- one frame ---------------------------------------------------------------------------------------------

void actions_view::draw() {
    renew_pictures();
    show_page();
    zoom();
    head.show_figures();
    ui.thumbs->draw_new();
    ui.tiles->draw_new();
    ui.chart->draw_new();
    ui.gauge_1->draw_new();
    ui.gauge_2->draw_new();
    if (ui.chart_stack->currentWidget() == ui.o2)
        ui.o2->update();
}

void actions_view::renew_pictures() {
    pictures.labels = ui.chart->work_out_labels();
    pictures.value_texts.clear();
    for (const sample_row& row : std::as_const(results.these_samples))
        pictures.value_texts += row.value;
}

void actions_view::zoom() {
    const bool is_chart = ui.chart_stack->currentWidget() == ui.chart;
    ui.chart->setAccessibleName(QStringLiteral("Chart: ") + shown.chart_names(results));
    keep_room(*ui.zoom_row, is_chart);
    ui.zoom_row->setVisible(run_controller.zoom_slider_shown() && is_chart);
    // The slider goes no lower than its label says.
    const double rows = std::max(1.0, static_cast<double>(results.cur_log_points.rows()));
    ui.zoom->setMinimum(
        std::min(ui.zoom->maximum(), static_cast<int>(std::ceil(fewest_shown / rows * ui.zoom->maximum()))));
    const double slider = static_cast<double>(ui.zoom->value()) / ui.zoom->maximum();
    const brivant::actions::zoomed now = run_controller.zoom(run_controller.zoom_slider_shown() ? slider : 1);
    ui.chart->zoom(now.points, shown.chart_names(results) + QStringLiteral(" \u2013 ") + now.title);
}

bool actions_view::has_samples() const {
    return std::any_of(results.these_samples.begin(), results.these_samples.end(),
                       [](const sample_row& row) { return !row.value.isEmpty(); });
}

void actions_view::show_page() {
    const bool filled = has_samples();
    const bool has_picture = results.mode == op_o2_layout && results.o2_mask != 0;
    const view_of_run now = view == as_exhaust && !has_picture ? as_chart : view;
    if (now == as_exhaust)
        ui.chart_stack->setCurrentWidget(ui.o2);
    else if (!filled)
        ui.chart_stack->setCurrentWidget(ui.empty_page);
    else if (now == as_tiles)
        ui.chart_stack->setCurrentWidget(ui.tiles);
    else
        ui.chart_stack->setCurrentWidget(ui.chart);
    const bool is_empty = ui.chart_stack->currentWidget() == ui.empty_page;
    if (is_empty)
        ui.empty_text->setText(words_before_values(context, run_controller, ran));
    ui.views->at(as_exhaust).setVisible(results.mode == op_o2_layout);
    ui.views->at(as_exhaust).setEnabled(has_picture);
    ui.views->set_current(now);
    const bool fills = ui.chart_stack->currentWidget() == ui.tiles;
    ui.gauges->setHidden(fills);
    ui.thumbs->setHidden(fills);
    theme::mark(*ui.chart_card, "role", fills ? QString() : QStringLiteral("card"));
    ui.copy_picture->setEnabled(!is_empty);
    ui.save_picture->setEnabled(!is_empty);
}

} // namespace brivant
