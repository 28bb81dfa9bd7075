#include "app/diagnostics/codes_page.h"

#include "app/diagnostics/noted_delegate.h"
#include "app/look/tables.h"

#include <QHeaderView>
#include <algorithm>

namespace brivant {

namespace {

constexpr int empty_icon_size = 32;
constexpr int side_letters = 37;
constexpr int narrowest_side = 272;
constexpr int widest_side = 376;
constexpr int mil_size = 28;
constexpr int code_row_height = 36;
constexpr int readiness_row_height = 26;
constexpr int most_permanent_rows = 4; // before they scroll
const QString unknown = QStringLiteral("\u2013");

// "Protocol: CAN" with its first part in a quieter colour, as HTML that is not broken within.
QString fact_as_html(const QString& fact, const QColor& quiet) {
    const qsizetype colon = fact.indexOf(QLatin1String(": "));
    const auto unbroken = [](const QString& text) {
        return text.toHtmlEscaped().replace(QLatin1Char(' '), QStringLiteral("&nbsp;"));
    };
    return QStringLiteral("<span style=\"color:%1\">%2</span>%3")
        .arg(quiet.name(), unbroken(fact.left(colon + 1)), unbroken(fact.mid(colon + 1)));
}

void set_up_codes(QTableView& table, codes_model& model, const theme& look) {
    table.setModel(&model);
    table.setItemDelegate(new noted_delegate(look, &table));
    let_rows_wrap(table, codes_model::description_column, code_row_height);
}

} // namespace

codes_page::codes_page(const Ui::read_codes_view& its_ui, const view_context& its_context,
                       readCodes& its_controller)
    : ui(its_ui), context(its_context), controller(its_controller), results(its_controller.results),
      reading(part::codes, results, its_controller.toolies), codes(its_controller, reading),
      permanent_rows(its_controller, permanent.rows), readiness(monitors, nullptr),
      head({*ui.read, *ui.stop, *ui.note, *ui.progress}, its_context, its_controller,
           {op_read_codes, op_clear_codes, op_permanent}),
      bar(*new reading_bar(*ui.codes_column, *ui.cards, its_context)) {
    set_up_tables();
    connect(ui.read, &QPushButton::clicked, this, &codes_page::start);
    connect(ui.clear, &QPushButton::clicked, this, [this] { controller.clearCodes(); });
    connect(ui.permanent, &QPushButton::clicked, this,
            [this] { head.start([this] { controller.readPermanent(); }); });
}

void codes_page::set_up_tables() {
    set_up_codes(*ui.codes_table, codes, context.frame.look());
    set_up_codes(*ui.permanent_table, permanent_rows, context.frame.look());
    ui.permanent_table->horizontalHeader()->hide();

    ui.readiness_table->setModel(&readiness);
    ui.readiness_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    ui.readiness_table->horizontalHeader()->setSectionResizeMode(readiness_model::description_column,
                                                                 QHeaderView::Stretch);
    ui.readiness_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    ui.readiness_table->verticalHeader()->setDefaultSectionSize(readiness_row_height);
    make_copyable(*ui.readiness_table);
}

void codes_page::start() {
    head.start([this] { controller.l_readCodes(); });
}

void codes_page::reload(part what) {
    status = read_status_again(results, controller.toolies);
    if (what == part::reading)
        show_reading();
    else if (what == part::codes)
        show_codes();
    else if (what == part::permanent)
        show_permanent();
    else if (what == part::readiness)
        show_readiness();
    else if (what == part::labels)
        show_labels();
    else if (what == part::progress)
        head.show_progress();
    else if (what == part::operation)
        show_operation();
}

void codes_page::show_operation() {
    const bool had_focus = ui.clear->hasFocus() || ui.permanent->hasFocus();
    head.show(QString());
    ui.clear->setEnabled(!controller.is_running());
    ui.permanent->setEnabled(!controller.is_running());
    if (had_focus && head.runs_here())
        ui.stop->setFocus();
    show_codes();
    show_permanent();
}

void codes_page::show_reading() {
    show_codes();
    show_readiness();
    show_labels();
}

void codes_page::show_permanent() {
    permanent = read_permanent_codes(results, controller.toolies);
    permanent_rows.reload();
    const int rows = permanent_rows.rowCount();
    ui.permanent_table->setVisible(rows > 0);
    ui.permanent_table->setMinimumHeight(code_row_height + theme::step);
    ui.permanent_table->setMaximumHeight(std::min(rows, most_permanent_rows) * code_row_height + theme::step);
    const bool doubt = !permanent.words.isEmpty() && !permanent.drive_cycle_words.isEmpty();
    ui.permanent_words->setText(permanent.words + (doubt ? QStringLiteral(" ") : QString()) +
                                permanent.drive_cycle_words);
    ui.permanent_words->setVisible(!ui.permanent_words->text().isEmpty());
    ui.permanent_card->setVisible(permanent.was_read);
    show_readiness();
}

void codes_page::show_codes() {
    codes.reload();
    bar.show_lines({&reading}, &status);
    span_headings(*ui.codes_table, codes);
    ui.codes_stack->setCurrentWidget(codes.rowCount() > 0 ? ui.codes_filled : ui.codes_empty);
    if (head.runs_here())
        ui.empty_text->setText(head.waiting_words());
    else if (results.read_on_label.isEmpty())
        ui.empty_text->setText(QStringLiteral("No codes read yet. Press Read (F5) with the ignition on."));
    else
        ui.empty_text->setText(QStringLiteral("Nothing to show now. Press Read (F5) with the ignition on."));
}

void codes_page::show_readiness() {
    monitors = status.shown().monitors + permanent.drive_cycle;
    readiness.reload();
    span_headings(*ui.readiness_table, readiness);
    ui.readiness_stack->setCurrentWidget(readiness.rowCount() > 0 ? ui.readiness_filled : ui.readiness_empty);
    ui.readiness_summary->setText(readiness.summary());
}

void codes_page::show_labels() {
    const theme& look = context.frame.look();
    bool was_read = false; // else the label says what will stand there
    results.code_count_label.toInt(&was_read);
    const car_status& shown = status.shown();
    const bool known = was_read && shown.is_known;
    const bool on = known && shown.mil;

    ui.mil_word->setText(!known ? unknown : on ? QStringLiteral("ON") : QStringLiteral("OFF"));
    theme::mark(*ui.mil_word, "warning", on);
    ui.code_count->setText(known ? QString::number(shown.codes) : unknown);
    const QString picture = on ? QStringLiteral("mil_on.png") : QStringLiteral("mil_off.png");
    ui.mil_picture->setPixmap(look.icon(picture).pixmap(mil_size));
    ui.mil_picture->setAccessibleName(
        QStringLiteral("MIL Lamp: %1").arg(known ? ui.mil_word->text() : QStringLiteral("not known")));

    QStringList told;
    for (const QString& fact : results.xtra_info_label.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        told += fact_as_html(fact, look.muted);
    ui.facts->setText(told.join(QStringLiteral(" &nbsp;&nbsp;&nbsp; ")));
}

void codes_page::look_changed() {
    const theme& look = context.frame.look();
    ui.empty_icon->setPixmap(look.icon(QStringLiteral("diags.png")).pixmap(empty_icon_size));
    ui.side->setFixedWidth(
        std::clamp(ui.side->fontMetrics().horizontalAdvance(QLatin1Char('x')) * side_letters, narrowest_side,
                   widest_side));
    ui.code_count->setFont(theme::figures(ui.code_count->font()));
    reload(part::labels);
    show_operation();
}

} // namespace brivant
