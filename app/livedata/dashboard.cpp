#include "app/livedata/dashboard.h"

#include <QEvent>

namespace brivant {

dashboard::dashboard(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(QStringLiteral("Dashboard"));
    ground = new QWidget;
    setWidget(ground);
}

void dashboard::rebuild(const run_pictures& pictures) {
    for (value_tile* tile : tiles)
        delete tile;
    tiles.clear();
    for (int index = 0; index < pictures.results.these_samples.size(); ++index) {
        auto* tile = new value_tile(pictures, index, ground);
        connect(tile, &QAbstractButton::clicked, this, [this, index] { Q_EMIT chart_chosen(index); });
        connect(tile, &value_tile::neighbour_wanted, this,
                [this, index](int by, bool row) { focus(index + by * (row ? grid.columns : 1)); });
        tiles.push_back(tile);
        tile->show();
    }
    arrange();
}

void dashboard::set_look(const theme& its_look) {
    for (value_tile* tile : tiles)
        tile->set_look(its_look);
}

void dashboard::set_silent_since(QTime when) {
    if (when == silent_since)
        return;
    silent_since = when;
    for (value_tile* tile : tiles)
        tile->set_silent_since(when);
}

void dashboard::draw_new() {
    for (value_tile* tile : tiles)
        tile->draw_new();
}

void dashboard::arrange() {
    const QSizeF least = value_tile::least_size(font());
    grid = tile_grid::filling(static_cast<int>(tiles.size()), viewport()->size(), least, theme::step);
    ground->resize(viewport()->width(), qRound(grid.height()));
    for (size_t index = 0; index < tiles.size(); ++index)
        tiles[index]->setGeometry(grid.place(static_cast<int>(index)).toAlignedRect());
}

void dashboard::focus(int index) {
    if (index < 0 || index >= static_cast<int>(tiles.size()))
        return;
    value_tile* tile = tiles[static_cast<size_t>(index)];
    tile->setFocus(Qt::TabFocusReason);
    ensureWidgetVisible(tile);
}

void dashboard::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    arrange();
}

void dashboard::changeEvent(QEvent* event) {
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        arrange();
}

} // namespace brivant
