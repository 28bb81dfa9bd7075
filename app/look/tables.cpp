#include "app/look/tables.h"

#include "base/anonymity.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <algorithm>

namespace brivant {

QString selected_rows_as_text(const QTableView& table) {
    if (!table.selectionModel())
        return {};
    QModelIndexList selected = table.selectionModel()->selectedRows();
    std::sort(selected.begin(), selected.end());
    QStringList lines;
    for (const QModelIndex& row : selected) {
        QStringList cells;
        for (int column = 0; column < table.model()->columnCount(); ++column)
            cells += row.siblingAtColumn(column).data(Qt::AccessibleTextRole).toString();
        lines += cells.join(QLatin1Char('\t'));
    }
    return lines.join(QLatin1Char('\n'));
}

void make_copyable(QTableView& table) {
    const auto add = [&table](const QString& text, QKeySequence::StandardKey key) {
        auto* action = new QAction(text, &table);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        table.addAction(action);
        return action;
    };
    QObject::connect(add(QStringLiteral("Copy"), QKeySequence::Copy), &QAction::triggered, &table, [&table] {
        const QString text = selected_rows_as_text(table);
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(for_others(text));
    });
    QObject::connect(add(QStringLiteral("Select all"), QKeySequence::SelectAll), &QAction::triggered, &table,
                     &QTableView::selectAll);
    // A menu that pops up and returns: the policy for actions would run an event loop of its own.
    table.setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(&table, &QTableView::customContextMenuRequested, &table, [&table](const QPoint& at) {
        auto* menu = new QMenu(&table);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->addActions(table.actions());
        menu->popup(table.viewport()->mapToGlobal(at));
    });
}

void let_rows_wrap(QTableView& table, int stretched_column, int least_height) {
    QHeaderView& columns = *table.horizontalHeader();
    columns.setSectionResizeMode(QHeaderView::ResizeToContents);
    columns.setSectionResizeMode(stretched_column, QHeaderView::Stretch);
    table.verticalHeader()->setMinimumSectionSize(least_height);
    table.verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    QObject::connect(&columns, &QHeaderView::sectionResized, &table,
                     &QTableView::resizeRowsToContents); // a narrower text takes more lines
    make_copyable(table);
}

void make_list(QTableView& table, int stretched_column, int row_height) {
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setSelectionMode(QAbstractItemView::SingleSelection);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setTabKeyNavigation(false);
    table.setShowGrid(false);
    table.setWordWrap(false);
    table.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table.verticalHeader()->setVisible(false);
    table.verticalHeader()->setDefaultSectionSize(row_height);
    table.horizontalHeader()->setHighlightSections(false);
    table.horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table.horizontalHeader()->setSectionResizeMode(stretched_column, QHeaderView::Stretch);
}

} // namespace brivant
