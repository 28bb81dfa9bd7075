#include "app/diagnostics/pending_page.h"

#include <QHeaderView>

namespace brivant {

pending_page::pending_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                           const result_words& its_words)
    : result_page(pages, its_context, its_controller, its_words),
      code_reading(part::pending, results, its_controller.toolies),
      frame_reading(part::freeze, results, its_controller.toolies), codes(its_controller, code_reading),
      freeze(frame_reading, {QStringLiteral("Parameter"), QStringLiteral("Value")}, freeze_cells) {
    card.set_up(codes, QStringLiteral("Pending codes"), context.frame.look());
    card.caption.setText(QStringLiteral("Pending codes"));
    card.caption.show();
    side.set_up(freeze, QStringLiteral("Freeze frame"), context.frame.look());
    side.caption.setText(QStringLiteral("Freeze frame"));
    side.caption.show();
    side.frame.show();
    // There are long texts in either column.
    side.table.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void pending_page::reload(part what) {
    result_page::reload(what == part::freeze ? part::pending : what);
}

void pending_page::show_rows() {
    card.show_rows(codes, empty_words(nothing_words()));
    // A car without a freeze frame has a row that says so.
    const QString untold = QStringLiteral("The car has stored a freeze frame, but does not tell its values.");
    side.show_rows(freeze, empty_words(untold));
}

} // namespace brivant
