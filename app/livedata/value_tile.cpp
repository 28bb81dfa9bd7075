#include "app/livedata/value_tile.h"

#include "app/look/painting.h"
#include "base/shared_types.h"
#include "charts/axis_values.h"
#include "charts/spark_line.h"

#include <QKeyEvent>

namespace brivant {

namespace {

constexpr double corner = 10;
constexpr double dim = 0.45;
constexpr double least_line_height = 16;
// Of the tile, to what the name and the foot leave over.
constexpr double value_part = 0.62;
constexpr double unit_part = 0.25; // of the room for the value

} // namespace

value_tile::value_tile(const run_pictures& its_pictures, int its_index, QWidget* parent)
    : QAbstractButton(parent), pictures(its_pictures), index(its_index) {
    setObjectName(QStringLiteral("tile_%1").arg(row().pid));
    setAccessibleName(row().name);
    setToolTip(theme::plain_tool_tip(row().name + QStringLiteral("\nClick: its chart.")));
    setFocusPolicy(index == 0 ? Qt::StrongFocus : Qt::ClickFocus); // one stop of the Tab key for all
    setCursor(Qt::PointingHandCursor);
}

QSizeF value_tile::least_size(const QFont& font) {
    const QFontMetricsF body(font);
    return {body.averageCharWidth() * 20 + 2 * theme::step,
            2 * body.height() + QFontMetricsF(sized(font, heading_size)).height() + least_line_height +
                2 * theme::step};
}

void value_tile::set_look(const theme& its_look) {
    look = its_look;
    update();
}

void value_tile::set_silent_since(QTime when) {
    silent_since = when;
    stale = true;
    update();
}

void value_tile::draw_new() {
    if (stale && !visibleRegion().isEmpty())
        update();
}

QString value_tile::foot_words() const {
    if (silent_since.isValid())
        return QStringLiteral("nothing since %1").arg(silent_since.toString(QStringLiteral("HH:mm:ss")));
    const series_summary seen = pictures.results.cur_log_points.extremes_with_first(index);
    return seen.empty() ? QString()
                        : QStringLiteral("min %1   max %2")
                              .arg(short_number(seen.minimum), short_number(seen.maximum));
}

// The number as large as the room allows, its unit behind it.
void value_tile::draw_value(QPainter& painter, const QRectF& room, const value_text& shown) const {
    QFont large = sized(theme::figures(font()), display_size);
    large.setWeight(QFont::DemiBold);
    QFont unit_font = sized(font(), heading_size);
    unit_font.setPixelSize(std::max(unit_font.pixelSize(), static_cast<int>(room.height() * unit_part)));
    const double unit_width =
        shown.unit.isEmpty() ? 0 : QFontMetricsF(unit_font).horizontalAdvance(shown.unit) + theme::step;
    // In proportion, so that it need not be tried size by size; as wide as five figures, so that it does not
    // jump when one is added.
    const QFontMetricsF metrics(large);
    const double wanted =
        std::max(metrics.horizontalAdvance(shown.number), metrics.horizontalAdvance(QStringLiteral("88888")));
    const double fits = std::min((room.width() - unit_width) / wanted, room.height() / metrics.height());
    large.setPixelSize(std::max(1, static_cast<int>(large.pixelSize() * fits)));
    painter.setFont(large);
    painter.setPen(look.text);
    const QFontMetricsF fitted(large);
    const double base = room.center().y() + (fitted.ascent() - fitted.descent()) / 2;
    painter.drawText(QPointF(room.left(), base), shown.number);
    painter.setFont(unit_font);
    painter.setPen(look.muted);
    painter.drawText(QPointF(room.left() + fitted.horizontalAdvance(shown.number) + theme::step, base),
                     shown.unit);
}

void value_tile::paintEvent(QPaintEvent*) {
    stale = false;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(hasFocus() ? look.accent : look.edge, hasFocus() ? 2 : 1));
    painter.setBrush(look.card);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), corner, corner);
    if (silent_since.isValid())
        painter.setOpacity(dim);

    const QRectF inner =
        QRectF(rect()).adjusted(1.5 * theme::step, theme::step, -1.5 * theme::step, -theme::step);
    const int line = fontMetrics().height();
    draw_line(painter, font(), look.text, QRectF(inner.left(), inner.top(), inner.width(), line).toRect(),
              row().name);
    const double free = inner.height() - 2 * line;
    const QRectF value_room(inner.left(), inner.top() + line, inner.width(), free * value_part);
    const QString unit = row().units == not_available ? QString() : row().units.trimmed();
    draw_value(painter, value_room, shown_value(row().value, row().latest, unit));
    const QRectF line_room(inner.left(), value_room.bottom(), inner.width(),
                           inner.bottom() - line - value_room.bottom());
    draw_spark_line(painter, pictures.results.cur_log_points, index, line_room.adjusted(0, 2, 0, -4),
                    look.accent, painter.device()->devicePixelRatioF());
    if (silent_since.isValid())
        painter.setOpacity(1);
    draw_line(painter, theme::small(font()), silent_since.isValid() ? look.amber : look.muted,
              QRectF(inner.left(), inner.bottom() - line, inner.width(), line).toRect(), foot_words());
    setAccessibleDescription((row().value + u' ' + foot_words()).trimmed());
}

void value_tile::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: return click();
    case Qt::Key_Left: return Q_EMIT neighbour_wanted(-1, false);
    case Qt::Key_Right: return Q_EMIT neighbour_wanted(1, false);
    case Qt::Key_Up: return Q_EMIT neighbour_wanted(-1, true);
    case Qt::Key_Down: return Q_EMIT neighbour_wanted(1, true);
    default: QAbstractButton::keyPressEvent(event);
    }
}

} // namespace brivant
