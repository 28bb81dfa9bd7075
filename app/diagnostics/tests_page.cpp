#include "app/diagnostics/tests_page.h"

#include "diagnostics/mode6_records.h"

#include <QHeaderView>

namespace brivant {

tests_page::tests_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                       const result_words& its_words)
    : result_page(pages, its_context, its_controller, its_words),
      reading(words.results, results, its_controller.toolies), model(reading, context.frame.look()),
      delegate(context.frame.look()) {
    card.set_up(model, QLatin1String(words.title), context.frame.look());
    card.table.setItemDelegate(&delegate);
    card.table.setSelectionMode(QAbstractItemView::ExtendedSelection);
    card.table.horizontalHeader()->setSectionResizeMode(tests_model::limits_column,
                                                        QHeaderView::ResizeToContents);
    card.table.horizontalHeader()->setSectionResizeMode(tests_model::test_column, QHeaderView::Stretch);
    connect(card.table.selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &tests_page::show_detail);
}

// The table outlives the model, and lets go of its selection with it.
tests_page::~tests_page() {
    card.table.selectionModel()->disconnect(this);
}

void tests_page::show_rows() {
    card.show_rows(model, empty_words(nothing_words()));
    const bool filled = model.rowCount() > 0;
    ui.detail_card->setVisible(filled);
    if (filled && !head.runs_here() && !card.table.currentIndex().isValid()) {
        const QList<int> failed = model.failed();
        card.table.selectRow(failed.isEmpty() ? 0 : failed.first());
    }
    show_detail();
}

QString tests_page::summary() const {
    if (model.rowCount() == 0)
        return {};
    const qsizetype failed = model.failed().size();
    return QStringLiteral("%1 %2, %3 failed")
        .arg(model.rowCount())
        .arg(model.rowCount() == 1 ? QStringLiteral("test") : QStringLiteral("tests"))
        .arg(failed);
}

void tests_page::show_detail() {
    const theme& look = context.frame.look();
    const int shown = card.table.currentIndex().isValid() ? card.table.currentIndex().row() : -1;
    if (shown < 0 || shown >= model.rowCount()) {
        ui.detail->setHtml(QStringLiteral("<p style=\"color:%1\">Select a test to see its limits.</p>")
                               .arg(look.muted.name()));
        return;
    }
    const test_row row = model.row_of(shown);
    ui.detail->setHtml(QStringLiteral("<p style=\"margin:4px 0 0 0; font-weight:600\">%1</p>"
                                      "<p style=\"margin:2px 0 6px 0; color:%4\">%2</p>%3"
                                      "<p style=\"margin:6px 0 0 0; color:%4\">%5</p>")
                           .arg(tests_model::title_of(row).toHtmlEscaped(),
                                tests_model::subject_of(row).toHtmlEscaped(),
                                work_out_result_html(row.limits(), row.unit, !row.passed), look.muted.name(),
                                QStringList{row.text().trimmed(), model.other_reading_of(shown)}
                                    .join(u'\n')
                                    .trimmed()
                                    .toHtmlEscaped()
                                    .replace(QLatin1Char('\n'), QStringLiteral("<br>"))));
}

void tests_page::look_changed() {
    result_page::look_changed();
    card.table.viewport()->update();
}

} // namespace brivant
