#include "app/screen/link_mark.h"

#include "app/look/theme.h"

#include <QHBoxLayout>
#include <QIcon>

namespace brivant {

namespace {

constexpr int mark_size = 16;
constexpr int widest = 220;
constexpr int narrowest = 96;

struct condition_look {
    const char* picture;
    const char* word;
};

condition_look look_of(link_words::condition now) {
    switch (now) {
    case link_words::condition::open: return {":/artwork/link_open.png", "connected"};
    case link_words::condition::opening: return {":/artwork/link_opening.png", "connecting ..."};
    default: return {":/artwork/link_closed.png", "not connected"};
    }
}

} // namespace

link_mark::link_mark(QWidget* parent) : QToolButton(parent) {
    setObjectName(QStringLiteral("link_mark"));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    state.setProperty("role", QStringLiteral("small"));
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch();
    words->addWidget(&far_end);
    words->addWidget(&state);
    words->addStretch();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(theme::step, 0, theme::step, 0);
    row->setSpacing(theme::step);
    row->addWidget(&mark);
    row->addLayout(words, 1);
    for (QLabel* label : {&mark, static_cast<QLabel*>(&far_end), static_cast<QLabel*>(&state)})
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    show_words();
}

void link_mark::set_link(const link_words& words) {
    if (shown == words)
        return;
    shown = words;
    show_words();
}

void link_mark::show_words() {
    const condition_look look = look_of(shown.now);
    mark.setPixmap(
        QIcon(QLatin1String(look.picture)).pixmap(QSize(mark_size, mark_size), devicePixelRatioF()));
    far_end.set_text(shown.far_end);
    state.set_text(QLatin1String(look.word));
    setToolTip(
        theme::plain_tool_tip(shown.details + QStringLiteral("\nClick for the list of links (Ctrl+L)")));
    setAccessibleName(QStringLiteral("Link %1: %2").arg(shown.far_end, QLatin1String(look.word)));
    setAccessibleDescription(shown.details);
    updateGeometry();
}

QSize link_mark::sizeHint() const {
    const int words = std::max(far_end.sizeHint().width(), state.sizeHint().width());
    return {std::clamp(words + mark_size + 4 * theme::step, narrowest, widest),
            layout()->sizeHint().height()};
}

QSize link_mark::minimumSizeHint() const {
    return {narrowest, layout()->minimumSize().height()};
}

} // namespace brivant
