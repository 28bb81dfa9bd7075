#include "app/diagnostics/result_page.h"

#include "app/diagnostics/noted_delegate.h"
#include "app/look/tables.h"

namespace brivant {

namespace {

constexpr int empty_icon_size = 32;
constexpr int row_height = 34;
constexpr int empty_page = 0;
constexpr int table_page = 1;

QWidget& add_page(QStackedWidget& pages) {
    return *pages.widget(pages.addWidget(new QWidget));
}

// The parts of several pages from one description are told apart by the page's name in front of theirs.
void name_after(const char* page, QWidget& view) {
    for (QWidget* part : view.findChildren<QWidget*>()) {
        const QString name = part->objectName();
        if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_")))
            part->setObjectName(QLatin1String(page) + QLatin1Char('_') + name);
    }
}

} // namespace

void result_card::set_up(results_model& model, const QString& accessible_name, const theme& look) {
    table.setModel(&model);
    table.setItemDelegate(new noted_delegate(look, &table));
    table.setAccessibleName(accessible_name);
    let_rows_wrap(table, model.columnCount() - 1, row_height);
}

void result_card::show_rows(results_model& model, const QString& words) {
    model.reload();
    span_headings(table, model);
    empty_text.setText(words);
    stack.setCurrentIndex(model.rowCount() > 0 ? table_page : empty_page);
}

result_page::result_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                         const result_words& its_words)
    : context(its_context), controller(its_controller), results(its_controller.results), words(its_words),
      view(add_page(pages)), ui(laid_out_in<Ui::result_page>(view)),
      head({*ui.read, *ui.stop, *ui.note, *ui.progress}, its_context, its_controller, {words.operation}),
      card{*ui.main_card, *ui.main_caption,    *ui.main_stack,
           *ui.main_icon, *ui.main_empty_text, *ui.main_table},
      side{*ui.side_card, *ui.side_caption,    *ui.side_stack,
           *ui.side_icon, *ui.side_empty_text, *ui.side_table},
      bar(*new reading_bar(*ui.column, *ui.cards, its_context)) {
    ui.heading->setText(QLatin1String(words.title));
    ui.read->setAccessibleName(QStringLiteral("Read: %1").arg(QLatin1String(words.title)));
    connect(ui.read, &QPushButton::clicked, this, &result_page::start);
    for (QWidget* part : QWidgetList{ui.main_caption, ui.side_caption, ui.side_card, ui.detail_card})
        part->hide();
    name_after(words.name, view);
}

void result_page::start() {
    head.start([this] { words.run(controller); });
}

void result_page::reload(part what) {
    if (what == part::progress)
        head.show_progress();
    else if (what == words.results || what == part::reading || what == part::operation)
        show_operation();
}

void result_page::ended(int code, bool done) {
    if (code != words.operation)
        return;
    last = done || results.car_offers_none ? last_read::done : last_read::left;
    show_operation();
}

void result_page::show_operation() {
    show_rows();
    head.show(summary());
    bar.show_lines(readings());
}

QString result_page::empty_words(const QString& nothing) const {
    if (head.runs_here())
        return head.waiting_words();
    switch (last) {
    case last_read::done: return nothing;
    case last_read::left:
        return QStringLiteral("The last read was not finished. Press Read (F5) to start again.");
    default:
        return has_results() ? QStringLiteral("The last read left nothing here.")
                             : QString::fromUtf8(words.not_read);
    }
}

void result_page::look_changed() {
    const QPixmap picture =
        context.frame.look().enlarged(QLatin1String(words.icon), empty_icon_size, view.devicePixelRatioF());
    card.icon.setPixmap(picture);
    side.icon.setPixmap(picture);
    show_operation();
}

text_page::text_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                     const result_words& its_words, const QStringList& headings, text_rows_model::split cells)
    : result_page(pages, its_context, its_controller, its_words),
      reading(words.results, results, its_controller.toolies), model(reading, headings, cells) {
    card.set_up(model, QLatin1String(words.title), context.frame.look());
}

void text_page::show_rows() {
    card.show_rows(model, empty_words(nothing_words()));
}

} // namespace brivant
