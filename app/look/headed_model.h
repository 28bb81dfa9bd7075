#pragma once

#include <QAbstractTableModel>
#include <QFont>
#include <QStringList>

namespace brivant {

// A table whose columns have headings, on the left above their texts.
class headed_model : public QAbstractTableModel {
public:
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(headings.size());
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
            return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(headings.value(section))
                                                                        : QVariant();
    }

protected:
    explicit headed_model(const QStringList& its_headings, QObject* parent = nullptr)
        : QAbstractTableModel(parent), headings(its_headings) {}

    // Of a cell (Qt::FontRole).
    static QVariant bold_when(bool stands_out) {
        QFont font;
        font.setBold(true);
        return stands_out ? QVariant(font) : QVariant();
    }

private:
    const QStringList headings;
};

} // namespace brivant
