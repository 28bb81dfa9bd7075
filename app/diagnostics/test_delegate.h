#pragma once

#include "app/look/theme.h"

#include <QStyledItemDelegate>

namespace brivant {

// Draws the rows of tests_model: a name in two lines, what the other reading says, and the limit bar. The
// look outlives it.
class test_delegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit test_delegate(const theme& its_look, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paint_name(QPainter& painter, const QStyleOptionViewItem& cell, const QModelIndex& index) const;
    void paint_verdict(QPainter& painter, const QStyleOptionViewItem& cell, const QIcon& mark,
                       const QModelIndex& index) const;
    void paint_bar(QPainter& painter, const QStyleOptionViewItem& cell, const QModelIndex& index) const;

    const theme& look;
};

} // namespace brivant
