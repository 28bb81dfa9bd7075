#pragma once

#include "app/pictures/thumbnail.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <vector>

namespace brivant {

// The thumbnails of a sample set, side by side; they scroll sideways.
class thumb_strip : public QScrollArea {
    Q_OBJECT

public:
    explicit thumb_strip(QWidget* parent = nullptr);

    // The set has changed: a thumbnail for each of its rows. `pictures` outlive them.
    void rebuild(const run_pictures& pictures);
    void clear();
    void set_look(const theme& look);
    // The window has little height.
    void set_low(bool low);
    void mark(const shown_samples& shown);
    // Row `index` has a new value; draw_new() shows it.
    void sample_arrived(int index) { thumbs.at(static_cast<size_t>(index))->set_stale(); }
    void draw_new();

Q_SIGNALS:
    void chart_chosen(int index);
    void group_toggled(int index);
    void gauge_chosen(int index);
    void reading_chosen(bool standard);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void add(const run_pictures& pictures, int index);
    void focus(int index);
    void fit_height();

    QWidget* row = nullptr;
    QHBoxLayout* places = nullptr;
    bool is_low = false;
    std::vector<thumbnail*> thumbs; // the row owns them
};

} // namespace brivant
