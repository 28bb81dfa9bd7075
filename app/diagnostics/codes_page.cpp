#include "app/diagnostics/codes_page.h"

#include "app/diagnostics/noted_delegate.h"
#include "app/diagnostics/readiness_line.h"
#include "app/look/tables.h"
#include "obd/ecu_names.h"
#include "persistence/vehicles.h"

#include <QHeaderView>

namespace brivant {

namespace {

constexpr int empty_icon_size = 32;
constexpr int code_row_height = 36;
const QList<int> its_operations{op_read_codes,     op_clear_codes,  op_permanent,
                                op_pending_freeze, op_vehicle_info, op_mode6};

// "Protocol: CAN" with its first part in a quieter colour, as HTML that is not broken within.
QString fact_as_html(const QString& fact, const QColor& quiet) {
    const qsizetype colon = fact.indexOf(QLatin1String(": "));
    const auto unbroken = [](const QString& text) {
        return text.toHtmlEscaped().replace(QLatin1Char(' '), QStringLiteral("&nbsp;"));
    };
    return QStringLiteral("<span style=\"color:%1\">%2</span>%3")
        .arg(quiet.name(), unbroken(fact.left(colon + 1)), unbroken(fact.mid(colon + 1)));
}

} // namespace

codes_page::codes_page(const Ui::read_codes_view& its_ui, const view_context& its_context,
                       readCodes& its_controller)
    : ui(its_ui), context(its_context), controller(its_controller), results(its_controller.results),
      confirmed(part::codes, results, its_controller.toolies),
      pending(part::pending, results, its_controller.toolies),
      frame(part::freeze, results, its_controller.toolies),
      vehicle(part::vehicle, results, its_controller.toolies),
      tests(part::mode6, results, its_controller.toolies),
      model(codes, [&its_controller](const QString& code) { return its_controller.description_of(code); }),
      head({*ui.read, *ui.stop, *ui.note, *ui.progress}, its_context, its_controller, its_operations),
      bar(*new reading_bar(*ui.codes_column, *ui.cards, its_context)), band(its_ui),
      chosen(its_ui, its_context) {
    set_up_table();
    connect(ui.read, &QPushButton::clicked, this, &codes_page::start);
    for (const QPushButton* button : {ui.read_all, ui.empty_next})
        connect(button, &QPushButton::clicked, this,
                [this] { head.start([this] { controller.read_everything(); }); });
    connect(ui.clear, &QPushButton::clicked, this, [this] { controller.clearCodes(); });
    connect(ui.permanent, &QPushButton::clicked, this,
            [this] { head.start([this] { controller.readPermanent(); }); });
}

void codes_page::set_up_table() {
    ui.codes_table->setModel(&model);
    ui.codes_table->setItemDelegate(new noted_delegate(context.frame.look(), ui.codes_table));
    ui.codes_table->horizontalHeader()->hide();
    let_rows_wrap(*ui.codes_table, code_list_model::description_column, code_row_height);
    connect(ui.codes_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &codes_page::show_chosen);
}

void codes_page::start() {
    head.start([this] { controller.l_readCodes(); });
}

void codes_page::reload(part what) {
    switch (what) {
    case part::progress: return show_progress();
    case part::operation: return show_operation();
    case part::labels: return show_labels();
    case part::vehicle: vehicle.reload(); return show_verdict();
    case part::codes:
    case part::readiness:
    case part::permanent:
    case part::pending:
    case part::freeze:
    case part::reading: return show_codes();
    default: return;
    }
}

void codes_page::read_again() {
    for (second_reading* reading : {&confirmed, &pending, &frame, &vehicle, &tests})
        reading->reload();
    status = read_status_again(results, controller.toolies);
    permanent = read_permanent_codes(results, controller.toolies);
    codes = code_list(confirmed.shown(), pending.shown(), permanent, freezing_code(frame.shown()));
}

void codes_page::show_operation() {
    const bool had_focus = ui.clear->hasFocus() || ui.permanent->hasFocus() || ui.read_all->hasFocus() ||
                           ui.empty_next->hasFocus();
    head.show(controller.everything().words());
    for (QPushButton* button : {ui.clear, ui.permanent, ui.read_all})
        button->setEnabled(!controller.is_running());
    if (had_focus && head.runs_here())
        ui.stop->setFocus();
    show_progress();
    show_codes();
}

void codes_page::show_progress() {
    head.show_progress();
    const reading_all& all = controller.everything();
    if (!all.is_on())
        return;
    constexpr int steps = 100; // of each part
    const int within =
        results.progress_total > 0 ? steps * results.progress_done / results.progress_total : 0;
    ui.progress->set_progress((all.part_number() - 1) * steps + within, reading_all::parts() * steps);
}

// The code that was chosen, else the first one.
int codes_page::row_to_choose() const {
    int first = -1;
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.is_heading(row))
            continue;
        if (model.listed(row).code == shown.code && model.listed(row).ecu == shown.ecu)
            return row;
        first = first < 0 ? row : first;
    }
    return first;
}

void codes_page::show_codes() {
    read_again();
    model.reload();
    bar.show_lines({&confirmed, &pending}, &status);
    span_headings(*ui.codes_table, model);
    ui.codes_stack->setCurrentWidget(model.rowCount() > 0 ? ui.codes_filled : ui.codes_empty);
    if (const int row = row_to_choose(); row >= 0)
        ui.codes_table->selectRow(row);
    show_chosen();
    show_verdict();
    show_readiness();
}

void codes_page::show_verdict() {
    const verdict told = judge(results, codes, status, permanent.was_read, vehicle.shown());
    band.show(told, context.frame.look());
    show_empty(told);
}

void codes_page::show_empty(const verdict& told) {
    const bool is_good = told.is == verdict::mood::good;
    const bool waits = head.runs_here();
    const theme& look = context.frame.look();
    const QString picture = is_good ? QStringLiteral("ok_pic.png") : QStringLiteral("diags.png");
    ui.empty_icon->setPixmap(look.enlarged(picture, empty_icon_size, ui.empty_icon->devicePixelRatioF()));
    ui.empty_title->setText(told.answer);
    ui.empty_title->setVisible(told.is != verdict::mood::not_read);
    const bool all_read = permanent.was_read && results.answers.contains(part::pending);
    if (waits)
        ui.empty_text->setText(head.waiting_words());
    else if (told.is == verdict::mood::not_read)
        ui.empty_text->setText(
            QStringLiteral("No codes read yet. Switch the ignition on and read all, or press "
                           "Read (F5) for the codes alone."));
    else
        ui.empty_text->setText(all_read ? told.more : QStringLiteral("No codes. Look for pending codes"));
    const bool offers_more = model.rowCount() == 0 && !all_read && !controller.is_running();
    ui.empty_next->setVisible(offers_more);
    ui.read_all->setVisible(!offers_more && !controller.is_running()); // there is one of them
    // There is nothing to choose from.
    ui.code_card->setVisible(model.rowCount() > 0);
}

void codes_page::show_chosen() {
    const QModelIndex at = ui.codes_table->currentIndex();
    if (!at.isValid() || at.row() >= model.rowCount() || model.is_heading(at.row()))
        return chosen.show_nothing();
    shown = model.listed(at.row());
    const QString name = controller.toolies.l_pull_ECU(shown.ecu);
    chosen.show(detail_of(shown, controller.description_of(shown.code),
                          QStringLiteral("%1 %2").arg(ecu_label(shown.ecu), name).trimmed(), frame.shown(),
                          tests.shown()));
}

void codes_page::show_readiness() {
    const QList<readiness_row> monitors = status.shown().monitors + permanent.drive_cycle;
    ui.readiness->setText(readiness_line(monitors, context.frame.look()));
    ui.readiness->setAccessibleName(QStringLiteral("Readiness of the monitors: ") +
                                    readiness_words(monitors));
    ui.readiness->setVisible(!monitors.isEmpty());
    const bool doubt = !permanent.words.isEmpty() && !permanent.drive_cycle_words.isEmpty();
    ui.permanent_words->setText(permanent.words + (doubt ? QStringLiteral(" ") : QString()) +
                                permanent.drive_cycle_words);
    ui.permanent_words->setVisible(!ui.permanent_words->text().isEmpty());
    show_labels();
}

void codes_page::show_labels() {
    const theme& look = context.frame.look();
    bool was_read = false; // else the label says what will stand there
    results.code_count_label.toInt(&was_read);
    band.show_lamp(status.shown(), was_read && status.shown().is_known, look);
    const auto car = vehicle_with_id(context.core.db, context.core.car.cur_veh_id());
    band.show_car(car ? car->name : QString(), was_read ? results.read_on_label : QString());

    QStringList told;
    for (const QString& fact : results.xtra_info_label.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        told += fact_as_html(fact, look.muted);
    ui.facts->setText(told.join(QStringLiteral(" &nbsp;&nbsp;&nbsp; ")));
    ui.readiness_card->setVisible(!told.isEmpty() || !ui.readiness->text().isEmpty());
}

void codes_page::look_changed() {
    band.look_changed();
    show_operation();
}

} // namespace brivant
