#include "app/pending_page.h"

pending_page::pending_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                           const result_words& its_words)
    : result_page(pages, its_context, its_controller, its_words), codes(its_controller, results.pendingArray),
      freeze(results.freezeArray, {QStringLiteral("Parameter"), QStringLiteral("Value")}, split_freeze_row) {
    card.set_up(codes, QStringLiteral("Pending codes"));
    card.caption.setText(QStringLiteral("Pending codes"));
    card.caption.show();
    side.set_up(freeze, QStringLiteral("Freeze frame"));
    side.caption.setText(QStringLiteral("Freeze frame"));
    side.caption.show();
    side.frame.show();
}

void pending_page::reload(const QString& list) {
    result_page::reload(list == QLatin1String("freeze") ? QString::fromLatin1(words.name) : list);
}

void pending_page::show_rows() {
    card.show_rows(codes, empty_words(nothing_words()));
    side.show_rows(freeze, empty_words(QStringLiteral("No freeze frame is stored.")));
}
