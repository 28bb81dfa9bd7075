#include "app/logs/logs_view.h"

#include "app/logs/plots_popup.h"
#include "app/look/tables.h"
#include "app/screen/reading_choice.h"
#include "base/string_table.h"
#include "base/work_a_moment.h"
#include "logs/log_texts.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>

namespace brivant {

namespace {

constexpr int empty_icon_size = 32;
constexpr int row_height = 34;
constexpr int rows_at_once = 100;
constexpr int preview_delay_ms = 150;

} // namespace

logs_view::logs_view(const view_context& its_context)
    : screen_view(its_context), ui(laid_out_in<Ui::logsDB_view>(*this)),
      manager(context.core.car, context.core.db, context.core.paths, context.window), model(manager),
      actions(*this, context, manager) {
    ui.export_place->addWidget(&actions.exports());
    ui.split->setStretchFactor(0, 3);
    ui.split->setStretchFactor(1, 1);
    ui.stop->hide();
    ui.preview->setFrameShape(QFrame::NoFrame);
    set_up_filters();
    set_up_table();
    connect_buttons();
    begin_at(*ui.logs_table);
    // A moment later: first the screen is shown.
    next_block = context.core.clock.one_shot(0, [this] { load(); });
}

// The widgets go last, and must not ask a manager that is gone.
logs_view::~logs_view() {
    ui.logs_table->setModel(nullptr);
}

void logs_view::set_up_filters() {
    for (int kind = 0; kind < log_filter::kinds; ++kind) {
        auto* button = new QPushButton(log_filter::name_of_kind(kind));
        button->setObjectName(QStringLiteral("kind_%1").arg(kind));
        button->setProperty("role", QStringLiteral("segment"));
        button->setCheckable(true);
        kinds.addButton(button, kind);
        ui.kinds_row->addWidget(button);
    }
    kinds.button(log_filter::all_kinds)->setChecked(true);
    connect(&kinds, &QButtonGroup::idClicked, this, [this](int kind) {
        manager.choose_kind(kind);
        load();
    });
    for (int place = 0; place < log_filter::recencies; ++place)
        ui.recency->addItem(log_filter::name_of_recency(place));
    connect(ui.recency, &QComboBox::activated, this, [this](int place) {
        manager.choose_recency(place);
        load();
    });
}

// The buttons of the kinds are made after what stands in the view description. In its place in the window
// only: before, the last widget counts as the one before the first.
void logs_view::order_for_tab() {
    QWidgetList order;
    for (QAbstractButton* kind : kinds.buttons())
        order += kind;
    order += QWidgetList{ui.recency, ui.stop,        ui.logs_table, ui.preview,     ui.all_files,    ui.view,
                         ui.plot,    ui.export_logs, ui.copy,       ui.delete_logs, ui.output_folder};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void logs_view::set_up_table() {
    ui.logs_table->setModel(&model);
    ui.logs_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    ui.logs_table->verticalHeader()->setDefaultSectionSize(row_height);
    ui.logs_table->horizontalHeader()->setStretchLastSection(true);
    make_copyable(*ui.logs_table);
    ui.logs_table->installEventFilter(this);
    connect(ui.logs_table, &QTableView::doubleClicked, this, &logs_view::viewLog);
    connect(ui.logs_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &logs_view::selection_changed);
    connect(ui.all_files, &QCheckBox::clicked, this, [this](bool all) {
        if (all)
            ui.logs_table->selectAll();
        else
            ui.logs_table->clearSelection();
    });
}

void logs_view::connect_buttons() {
    connect(ui.view, &QPushButton::clicked, this, &logs_view::viewLog);
    connect(ui.plot, &QPushButton::clicked, this, &logs_view::plotClicked);
    connect(ui.copy, &QPushButton::clicked, this, &logs_view::copyClicked);
    connect(ui.preview_plots, &plot_preview::chosen, this, [this](int column) {
        for (const log_header& log : selected())
            plot_this_log(*this, context, log, column);
    });
    connect(ui.preview_plots, &plot_preview::reading_chosen, this,
            [this](bool standard) { choose_reading(context, standard); });
    connect(ui.delete_logs, &QPushButton::clicked, this, &logs_view::deleteClicked);
    connect(ui.stop, &QPushButton::clicked, this, &logs_view::stop);
    connect(ui.output_folder, &QPushButton::clicked, &actions, &log_actions::show_output_folder);
    connect(&actions, &log_actions::deletion_changed, this, &logs_view::show_deletion);
    connect(ui.open_prefs, &QPushButton::clicked, this,
            [this] { context.frame.go_to(screen_kind::preferences); });

    auto* menu = new QMenu(ui.export_logs);
    menu->addAction(QStringLiteral("As CSV"), this, [this] { handle_export(false); });
    menu->addAction(QStringLiteral("As text"), this, [this] { handle_export(true); });
    menu->addSeparator();
    for (const run_format& one : run_formats())
        menu->addAction(QStringLiteral("For other tools: %1").arg(QLatin1String(one.words)), this,
                        [this, &one] { handle_export(false, &one); });
    connect(ui.export_logs, &QPushButton::clicked, menu, [this, menu] {
        menu->popup(ui.export_logs->mapToGlobal(QPoint(0, -menu->sizeHint().height())));
    });
}

// --- the list ----------------------------------------------------------------------------------------------

void logs_view::load() {
    if (actions.is_deleting())
        return;
    manager.loadLogs();
    model.reload();
    read_block();
}

// Rows for a moment; the rest when the event loop had its turn.
void logs_view::read_block() {
    const bool more =
        manager.is_loading() && work_a_moment([this] { return manager.load_more(rows_at_once); });
    model.append();
    show_list();
    if (more)
        next_block = context.core.clock.one_shot(0, [this] { read_block(); });
}

void logs_view::show_list() {
    const bool is_empty = model.rowCount() == 0;
    ui.list_stack->setCurrentWidget(is_empty ? ui.list_empty : ui.list_filled);
    ui.count->setText(manager.count_text());
    for (QPushButton* button : {ui.view, ui.plot, ui.export_logs, ui.copy, ui.delete_logs})
        button->setEnabled(!is_empty);
    ui.all_files->setEnabled(!is_empty);
    ui.preview_card->setVisible(!is_empty);
    ui.empty_text->setText(empty_words());
    ui.open_prefs->setVisible(manager.total_no_of_logs() == 0 &&
                              !context.core.defaults.value(setting::log_runs));
    selection_changed();
}

QString logs_view::empty_words() const {
    if (manager.is_loading())
        return QStringLiteral("The list is being read ...");
    if (manager.total_no_of_logs() > 0)
        return QStringLiteral("No logs of this kind. Choose All to see the others.");
    const QString name =
        manager.vehicle_name().isEmpty() ? QStringLiteral("this vehicle") : manager.vehicle_name();
    if (!context.core.defaults.value(setting::log_runs))
        return QStringLiteral(
                   "No logs are stored for %1 yet: \u201cLog runs\u201d is off in the preferences.")
            .arg(name);
    return QStringLiteral(
               "No logs are stored for %1 yet. What you read in Diagnostics and record in Live data will "
               "stand here.")
        .arg(name);
}

QList<log_header> logs_view::selected() const {
    QModelIndexList rows = ui.logs_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QList<log_header> logs;
    logs.reserve(rows.size());
    for (const QModelIndex& row : rows)
        logs += manager.log_at(row.row());
    return logs;
}

QList<log_header> logs_view::selected_or_told() const {
    QList<log_header> logs = selected();
    if (logs.isEmpty())
        context.window.show_message(QString(), localised(QStringLiteral("DLG_ITEMS_MUST_B_SELECTED")));
    return logs;
}

void logs_view::selection_changed() {
    // Counted by ranges: all rows are one.
    qsizetype rows = 0;
    for (const QItemSelectionRange& range : ui.logs_table->selectionModel()->selection())
        rows += range.height();
    ui.all_files->setChecked(rows > 0 && rows == model.rowCount());
    next_preview = context.core.clock.one_shot(preview_delay_ms, [this] { show_preview(); });
}

void logs_view::show_preview() {
    const QItemSelection selection = ui.logs_table->selectionModel()->selection();
    const bool is_one = selection.size() == 1 && selection.first().height() == 1;
    ui.preview_plots->show_log(context.core, std::nullopt);
    ui.preview_figures->show_log(context.core, std::nullopt);
    if (!is_one) {
        ui.preview_caption->setText(selection.isEmpty() ? QStringLiteral("Select a log to see what is in it.")
                                                        : QStringLiteral("Several logs are selected."));
        return ui.preview->clear();
    }
    const log_header log = manager.log_at(selection.first().top());
    ui.preview_caption->setText(QStringLiteral("%1: %2").arg(log_actions::title_of(log), log.info.trimmed()));
    const QString text = preview_of(context.core.toolies, log);
    ui.preview->setPlainText(text.isEmpty() ? QStringLiteral("This log holds no data.") : text);
    if (!isSampledLog(log.type))
        return;
    ui.preview_plots->show_log(context.core, log);
    ui.preview_figures->show_log(context.core, log);
}

// The other of the two readings is shown from now on.
void logs_view::reload(part what) {
    if (what == part::reading) // a moment later: a small plot may have asked, which then goes
        next_preview = context.core.clock.one_shot(0, [this] { show_preview(); });
}

// --- what is done with the selected ones -------------------------------------------------------------------

void logs_view::viewLog() {
    const QList<log_header> logs = selected_or_told();
    if (!logs.isEmpty())
        actions.view(logs);
}

void logs_view::plotClicked() {
    const QList<log_header> logs = selected_or_told();
    if (!logs.isEmpty())
        actions.plot(logs);
}

void logs_view::handle_export(bool as_txt, const run_format* format) {
    actions.handle_export(selected_or_told(), as_txt, format);
}

void logs_view::show_deletion() {
    const bool runs = actions.is_deleting();
    ui.progress->set_running(runs);
    ui.progress->set_progress(actions.deleted(), actions.to_delete());
    ui.stop->setVisible(runs);
    if (runs)
        return;
    load();
    ui.logs_table->setFocus();
}

bool logs_view::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui.logs_table && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            return viewLog(), true;
        if (key == Qt::Key_Delete)
            return deleteClicked(), true;
    }
    return screen_view::eventFilter(watched, event);
}

void logs_view::look_changed() {
    const theme& look = context.frame.look();
    order_for_tab();
    ui.empty_icon->setPixmap(look.enlarged(QStringLiteral("logs.png"), empty_icon_size, devicePixelRatioF()));
    ui.preview->setFont(theme::fixed(font()));
    ui.preview_plots->set_look(look);
    const QFontMetrics metrics(ui.logs_table->font());
    const auto wide_enough = [&](int column, const char* text) {
        ui.logs_table->setColumnWidth(column,
                                      metrics.horizontalAdvance(QLatin1String(text)) + 4 * theme::step);
    };
    wide_enough(logs_model::number_column, "1000000");
    wide_enough(logs_model::date_column, "30 Sep 2026 00:00");
    wide_enough(logs_model::kind_column, "Veh_info MM");
}

} // namespace brivant
