#pragma once

#include "app/pictures/thumbnail.h"

#include <QTime>

namespace brivant {

// One PID on the dashboard: its value as large as the tile allows, unit, the last minute as a line, and the
// smallest and largest value. A click asks for its chart. While nothing comes it is dim and says since when.
class value_tile : public QAbstractButton {
    Q_OBJECT

public:
    // `its_pictures` outlive it.
    value_tile(const run_pictures& its_pictures, int its_index, QWidget* parent);

    // No smaller in a grid.
    static QSizeF least_size(const QFont& font);
    void set_look(const theme& its_look);
    // Since when nothing comes, an invalid time while something does.
    void set_silent_since(QTime when);
    void set_stale() { stale = true; }
    // Has it drawn anew, when it is seen and has something new.
    void draw_new();

Q_SIGNALS:
    // The arrow keys: how many tiles on; a row counts as `row`.
    void neighbour_wanted(int by, bool row);

protected:
    void paintEvent(QPaintEvent*) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const sample_row& row() const { return pictures.results.these_samples.at(index); }
    // The line at the foot: the extremes, or since when nothing comes.
    QString foot_words() const;
    void draw_value(QPainter& painter, const QRectF& room, const value_text& shown) const;

    const run_pictures& pictures;
    const int index;
    theme look;
    QTime silent_since;
    bool stale = true;
};

} // namespace brivant
