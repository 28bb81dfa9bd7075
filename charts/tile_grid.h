#pragma once

#include <QRectF>
#include <QSizeF>

namespace brivant {

// Where equal tiles stand in a room that they fill: in two to six columns, so that each shows its number as
// large as it can.
struct tile_grid {
    int columns = 1;
    int rows = 0;
    QSizeF tile; // higher together than the room where they would be lower than `least`
    double gap = 0;

    // `least`: a tile is no smaller, where the room is as wide as one of them.
    static tile_grid filling(int tiles, QSizeF room, QSizeF least, double gap);
    double height() const { return rows * tile.height() + (rows - 1) * gap; }
    QRectF place(int index) const {
        const int column = index % columns, row = index / columns;
        return {QPointF(column * (tile.width() + gap), row * (tile.height() + gap)), tile};
    }
};

} // namespace brivant
