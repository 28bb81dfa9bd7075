#include "charts/tile_grid.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int fewest_columns = 2;
constexpr int most_columns = 6;
constexpr double number_shape = 1.9; // width to height of a tile whose number fills both

} // namespace

tile_grid tile_grid::filling(int tiles, QSizeF room, QSizeF least, double gap) {
    tile_grid best;
    if (tiles <= 0)
        return best;
    double best_size = -1;
    for (int columns = std::min(tiles, fewest_columns); columns <= std::min(tiles, most_columns); ++columns) {
        const int rows = (tiles + columns - 1) / columns;
        const double width = (room.width() - (columns - 1) * gap) / columns;
        if (best_size >= 0 && width < least.width())
            break;
        const double height = std::max(least.height(), (room.height() - (rows - 1) * gap) / rows);
        const double size = std::min(width / number_shape, height);
        if (size > best_size)
            best = {columns, rows, {width, height}, gap};
        best_size = std::max(best_size, size);
    }
    return best;
}

} // namespace brivant
