#pragma once

#include "app/look/theme.h"
#include "app/look/wrapping_delegate.h"

namespace brivant {

// Draws a quiet note (note_role of results_model.h) below the text of a cell that has one. The look outlives
// it.
class noted_delegate : public wrapping_delegate {
    Q_OBJECT

public:
    explicit noted_delegate(const theme& its_look, QObject* parent = nullptr)
        : wrapping_delegate(parent), look(its_look) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const theme& look;
};

} // namespace brivant
