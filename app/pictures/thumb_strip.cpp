#include "app/pictures/thumb_strip.h"

#include <QScrollBar>
#include <QWheelEvent>

namespace brivant {

namespace {
constexpr int scroll_bar_room = 14;
}

thumb_strip::thumb_strip(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    fit_height();
    setAccessibleName(QStringLiteral("Values of the run"));
    row = new QWidget;
    places = new QHBoxLayout(row);
    places->setContentsMargins(0, 0, 0, 0);
    places->setSpacing(theme::step);
    places->addStretch();
    setWidget(row);
}

void thumb_strip::clear() {
    for (thumbnail* thumb : thumbs)
        delete thumb;
    thumbs.clear();
}

void thumb_strip::rebuild(const run_pictures& pictures) {
    clear();
    for (int index = 0; index < pictures.results.these_samples.size(); ++index)
        add(pictures, index);
    fit_height();
}

void thumb_strip::add(const run_pictures& pictures, int index) {
    auto* thumb = new thumbnail(pictures, index, row);
    connect(thumb, &thumbnail::chart_chosen, this, [this, index] { Q_EMIT chart_chosen(index); });
    connect(thumb, &thumbnail::group_toggled, this, [this, index] { Q_EMIT group_toggled(index); });
    connect(thumb, &thumbnail::gauge_chosen, this, [this, index] { Q_EMIT gauge_chosen(index); });
    connect(thumb, &thumbnail::reading_chosen, this, &thumb_strip::reading_chosen);
    connect(thumb, &thumbnail::neighbour_wanted, this,
            [this, index](int direction) { focus(index + direction); });
    thumb->set_low(is_low);
    places->insertWidget(places->count() - 1, thumb, 0, Qt::AlignTop);
    thumbs.push_back(thumb);
    thumb->show();
}

void thumb_strip::focus(int index) {
    if (index < 0 || index >= static_cast<int>(thumbs.size()))
        return;
    thumbnail* thumb = thumbs[static_cast<size_t>(index)];
    thumb->setFocus(Qt::TabFocusReason);
    ensureWidgetVisible(thumb, theme::step);
}

void thumb_strip::set_look(const theme& look) {
    for (thumbnail* thumb : thumbs)
        thumb->set_look(look);
}

void thumb_strip::set_low(bool low) {
    if (low == std::exchange(is_low, low))
        return;
    for (thumbnail* thumb : thumbs)
        thumb->set_low(low);
    fit_height();
}

void thumb_strip::mark(const shown_samples& shown) {
    for (thumbnail* thumb : thumbs)
        thumb->mark(shown);
}

void thumb_strip::draw_new() {
    for (thumbnail* thumb : thumbs)
        thumb->draw_new();
}

// The scroll bar takes its room only where there is one.
void thumb_strip::fit_height() {
    const QSize each = thumbnail::whole_size(font(), is_low);
    const int wanted = static_cast<int>(thumbs.size()) * (each.width() + theme::step) - theme::step;
    setFixedHeight(each.height() + (wanted > width() ? scroll_bar_room : 0));
}

void thumb_strip::changeEvent(QEvent* event) {
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fit_height();
}

void thumb_strip::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fit_height();
}

// An ordinary wheel scrolls sideways too.
void thumb_strip::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    const int by = turned.x() != 0 ? turned.x() : turned.y();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - by);
    event->accept();
}

} // namespace brivant
