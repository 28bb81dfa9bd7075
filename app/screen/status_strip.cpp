#include "app/screen/status_strip.h"

#include <QHBoxLayout>
#include <QIcon>

namespace brivant {

namespace {

constexpr int strip_height = 40;
constexpr int mark_size = 16;
constexpr int widest_protocol = 330;

struct condition_look {
    const char* picture;
    const char* word;
};

condition_look look_of(link_words::condition now) {
    switch (now) {
    case link_words::condition::open: return {":/artwork/link_open.png", "open"};
    case link_words::condition::opening: return {":/artwork/link_opening.png", "opening ..."};
    default: return {":/artwork/link_closed.png", "closed"};
    }
}

} // namespace

status_strip::status_strip(QWidget* parent) : QFrame(parent) {
    setProperty("role", QStringLiteral("strip"));
    setFixedHeight(strip_height);
    ring.hide();
    status.setObjectName(QStringLiteral("status"));
    status.setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    mark.setFixedSize(mark_size, mark_size);
    protocol.setProperty("role", QStringLiteral("muted"));
    protocol.setMaximumWidth(widest_protocol);

    link_box = new QWidget;
    link_box->setObjectName(QStringLiteral("link_mark"));
    auto* link_row = new QHBoxLayout(link_box);
    link_row->setContentsMargins(0, 0, 0, 0);
    link_row->setSpacing(theme::step);
    link_row->addWidget(&mark);
    link_row->addWidget(&far_end);
    link_row->addWidget(&protocol);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2 * theme::step, 0, 2 * theme::step, 0);
    row->setSpacing(theme::step);
    row->addWidget(&ring);
    row->addWidget(&status, 1);
    row->addSpacing(2 * theme::step);
    row->addWidget(link_box);
    row->addWidget(&change);
    change.setObjectName(QStringLiteral("change_device"));
    change.setText(QStringLiteral("Links..."));
    change.setToolTip(QStringLiteral("The adapters that are known and around (Ctrl+L)"));
    change.setProperty("role", QStringLiteral("link"));
    change.setFocusPolicy(Qt::TabFocus);
    connect(&change, &QToolButton::clicked, this, &status_strip::links_wanted);
    link_box->setCursor(Qt::PointingHandCursor);
    link_box->installEventFilter(this);
    far_end.setTextFormat(Qt::PlainText);
    mark.setPixmap(QIcon(QLatin1String(look_of(shown.now).picture)).pixmap(mark_size));
}

bool status_strip::eventFilter(QObject* watched, QEvent* event) {
    if (watched == link_box && event->type() == QEvent::MouseButtonRelease)
        Q_EMIT links_wanted();
    return QFrame::eventFilter(watched, event);
}

void status_strip::set_link(const link_words& words) {
    if (shown == words)
        return;
    shown = words;
    const condition_look look = look_of(shown.now);
    const QString far_end_words = QStringLiteral("%1: %2").arg(shown.far_end, QLatin1String(look.word));
    mark.setPixmap(QIcon(QLatin1String(look.picture)).pixmap(mark_size));
    far_end.setText(far_end_words);
    protocol.set_text(shown.protocol);
    protocol.setVisible(!shown.protocol.isEmpty());
    link_box->setToolTip(theme::plain_tool_tip(shown.details));
    link_box->setAccessibleName(QStringLiteral("Link ") + far_end_words);
    link_box->setAccessibleDescription(shown.details);
}

} // namespace brivant
