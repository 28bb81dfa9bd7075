#pragma once

#include "app/livedata/value_tile.h"
#include "charts/tile_grid.h"

#include <QScrollArea>
#include <vector>

namespace brivant {

// The values of a run as tiles that fill the room; they scroll where they would be too small.
class dashboard : public QScrollArea {
    Q_OBJECT

public:
    explicit dashboard(QWidget* parent = nullptr);

    // The set has changed: a tile for each of its rows. `pictures` outlive them.
    void rebuild(const run_pictures& pictures);
    void set_look(const theme& its_look);
    // Since when nothing comes, an invalid time while something does.
    void set_silent_since(QTime when);
    void sample_arrived(int index) { tiles.at(static_cast<size_t>(index))->set_stale(); }
    void draw_new();

Q_SIGNALS:
    void chart_chosen(int index);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void arrange();
    void focus(int index);

    QWidget* ground = nullptr;
    std::vector<value_tile*> tiles; // the ground owns them
    tile_grid grid;
    QTime silent_since;
};

} // namespace brivant
