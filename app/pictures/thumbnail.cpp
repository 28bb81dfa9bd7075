#include "app/pictures/thumbnail.h"

#include "charts/axis_values.h"
#include "charts/picture.h"
#include "toolkit/mac_toolies.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>

namespace brivant {

namespace {

constexpr QSize laid_out(184, 124);
constexpr QSize laid_out_low(184, 98);
constexpr int foot_of_layout = 24;
constexpr int mark_size = 12;
constexpr double corner = 8;

} // namespace

QString shown_samples::chart_names(const live_results& results) const {
    QStringList names;
    for (int index = 0; index < results.these_samples.size(); ++index) {
        if (in_chart(index))
            names += results.these_samples.at(index).name;
    }
    return names.join(QStringLiteral(", "));
}

void shown_samples::choose(int index) {
    chart = index;
    group.clear();
}

void shown_samples::toggle(int index) {
    if (!is_group())
        group = {chart};
    if (group.erase(index) == 0)
        group.insert(index);
    if (group.empty())
        return choose(index);
    if (group.count(chart) == 0)
        chart = *group.begin();
    if (!is_group())
        choose(chart);
}

thumbnail::thumbnail(const run_pictures& its_pictures, int its_index, QWidget* parent)
    : QAbstractButton(parent), pictures(its_pictures), index(its_index), item(its_pictures.toolies) {
    setFixedSize(sizeHint());
    setFocusPolicy(Qt::ClickFocus);
    setCursor(Qt::PointingHandCursor);
    item.setThumbnail(true);
    item.map_time(true);
    item.set_item_2_plot(index);
    item.use_this_pids(pictures.results.pid_logitems_list);
    setObjectName(QStringLiteral("thumb_%1").arg(row().pid));
    setAccessibleName(row().name);
    connect(this, &QAbstractButton::clicked, this, &thumbnail::chart_chosen); // by assistive technology
    tell_other_reading();
}

QString thumbnail::other_reading() const {
    if (row().other_value.isEmpty())
        return {};
    return (pictures.toolies.standard_reading() ? QStringLiteral("The program's own reading: ")
                                                : QStringLiteral("By SAE J1979: ")) +
           row().other_value;
}

void thumbnail::tell_other_reading() {
    QStringList lines{row().name, other_reading(),
                      QStringLiteral("Click: large chart. Ctrl+click: together with the others chosen so.") +
                          (pictures.has_gauges ? QStringLiteral(" Right click: second gauge.") : QString())};
    lines.removeAll(QString());
    setToolTip(theme::plain_tool_tip(lines.join(u'\n')));
}

void thumbnail::set_look(const theme& its_look) {
    look = its_look;
    update();
}

void thumbnail::mark(const shown_samples& shown) {
    charted = shown.in_chart(index);
    on_gauge_2 = shown.gauge_2 == index;
    setFocusPolicy(index == shown.chart ? Qt::StrongFocus
                                        : Qt::ClickFocus); // one stop of the Tab key for all
    stale = true;
    update();
}

void thumbnail::draw_new() {
    if (stale && !visibleRegion().isEmpty())
        update();
}

// --- the picture -------------------------------------------------------------------------------------------

void thumbnail::draw_chart(double ratio) {
    const double growth = growth_for(font());
    const QSizeF room(width(), height() - foot_height());
    item.initWitdim(room / growth, objectName(), ratio * growth);
    item.set_thumb_selected(charted);
    item.update_cur_sample(pictures.value_texts);
    item.draw_grid(pictures.labels, row().name);
    item.plot_array_list(pictures.results.cur_log_points, pictures.labels);
}

QString thumbnail::extremes() const {
    const series_summary seen = pictures.results.cur_log_points.extremes_with_first(index);
    return seen.empty()
               ? QString()
               : QStringLiteral("min %1  max %2").arg(short_number(seen.minimum), short_number(seen.maximum));
}

QSize thumbnail::whole_size(const QFont& font, bool low) {
    return (QSizeF(low ? laid_out_low : laid_out) * growth_for(font)).toSize();
}

int thumbnail::foot_height() const {
    return qRound(foot_of_layout * growth_for(font()));
}

void thumbnail::changeEvent(QEvent* event) {
    QAbstractButton::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    setFixedSize(sizeHint());
    stale = true;
}

void thumbnail::set_low(bool low) {
    is_low = low;
    setFixedSize(sizeHint());
    stale = true;
    update();
}

QRect thumbnail::menu_place() const {
    const int foot = foot_height();
    return {width() - foot - 4, height() - foot, foot + 4, foot};
}

void thumbnail::draw_foot(QPainter& painter) {
    painter.setFont(theme::small(font()));
    painter.setPen(look.muted);
    const QRect foot(4, height() - foot_height(), menu_place().left() - 4, foot_height());
    painter.drawText(foot, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(extremes(), Qt::ElideRight, foot.width()));

    painter.setPen(Qt::NoPen);
    painter.setBrush(look.muted);
    const QPointF middle = QRectF(menu_place()).center();
    for (const int dot : {-1, 0, 1})
        painter.drawEllipse(middle + QPointF(foot_height() * dot / 3.6, 0), foot_height() / 11.0,
                            foot_height() / 11.0);

    if (!row().other_value.isEmpty()) {
        painter.setPen(look.muted);
        painter.drawText(menu_place().translated(-3 * mark_size - 1, 0), Qt::AlignCenter,
                         QStringLiteral("\u2260"));
    }
    if (!on_gauge_2)
        return;
    const QRectF dial(menu_place().left() - mark_size - 4, middle.y() - mark_size / 2.0, mark_size,
                      mark_size);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(look.accent, 1.8, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(dial, -40 * 16, 260 * 16);
    painter.drawLine(dial.center(), dial.center() + QPointF(3, -3.5));
}

void thumbnail::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double ratio = painter.device()->devicePixelRatioF();
    if (stale || item.imageRepresentation().devicePixelRatio() != ratio * growth_for(font()))
        draw_chart(ratio);
    stale = false;
    QPainterPath round;
    round.addRoundedRect(QRectF(0, 0, width(), height() - foot_height()), corner, corner);
    painter.save();
    painter.setClipPath(round);
    painter.drawImage(QRectF(0, 0, width(), height() - foot_height()), item.imageRepresentation());
    painter.restore();
    draw_foot(painter);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(look.accent, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), corner, corner);
    }
    tell_other_reading();
    setAccessibleDescription(QStringList{row().value, extremes(), other_reading()}.join(u' ').trimmed());
}

// --- mouse and keys ----------------------------------------------------------------------------------------

void thumbnail::show_menu(const QPoint& at) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Large chart\tEnter"), this, &thumbnail::chart_chosen);
    connect(menu->addAction(charted ? QStringLiteral("Out of the group\tCtrl+Enter")
                                    : QStringLiteral("Into the group\tCtrl+Enter")),
            &QAction::triggered, this, &thumbnail::group_toggled);
    if (pictures.has_gauges)
        menu->addAction(QStringLiteral("Second gauge\tG"), this, &thumbnail::gauge_chosen);
    menu->addSeparator();
    QAction* reading = menu->addAction(QStringLiteral("Standard reading (SAE J1979)"));
    reading->setCheckable(true);
    reading->setChecked(pictures.toolies.standard_reading());
    connect(reading, &QAction::triggered, this, &thumbnail::reading_chosen);
    menu->popup(at);
}

void thumbnail::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return; // the right one comes as contextMenuEvent
    if (menu_place().contains(event->position().toPoint()))
        show_menu(mapToGlobal(menu_place().topLeft()));
    else if (event->modifiers() & Qt::ControlModifier)
        Q_EMIT group_toggled();
    else
        Q_EMIT chart_chosen();
}

void thumbnail::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Mouse && pictures.has_gauges)
        Q_EMIT gauge_chosen();
    else if (event->reason() == QContextMenuEvent::Mouse)
        show_menu(event->globalPos());
    else
        show_menu(mapToGlobal(rect().center()));
}

void thumbnail::keyPressEvent(QKeyEvent* event) {
    const bool with_ctrl = event->modifiers() & Qt::ControlModifier;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (with_ctrl)
            Q_EMIT group_toggled();
        else
            Q_EMIT chart_chosen();
        return;
    case Qt::Key_G: return Q_EMIT gauge_chosen();
    case Qt::Key_Left: return Q_EMIT neighbour_wanted(-1);
    case Qt::Key_Right: return Q_EMIT neighbour_wanted(1);
    default: QAbstractButton::keyPressEvent(event);
    }
}

} // namespace brivant
