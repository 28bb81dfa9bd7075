#include "app/vehicle_button.h"

#include "app/look/painting.h"
#include "app/look/theme.h"

#include <QHBoxLayout>
#include <QMenu>

#include <algorithm>

namespace brivant {

namespace {

constexpr QSize picture_size{62, 36};
constexpr int widest = 240;
constexpr int narrowest = 120;

} // namespace

vehicle_button::vehicle_button(vehicle_list& its_vehicles, QWidget* parent)
    : QToolButton(parent), vehicles(its_vehicles) {
    setObjectName(QStringLiteral("vehicle_button"));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    setToolTip(QStringLiteral("Choose another vehicle, or add one"));
    picture.setFixedSize(picture_size);
    name.setProperty("role", QStringLiteral("strong"));
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch();
    words->addWidget(&name);
    words->addWidget(&note, 0, Qt::AlignLeft);
    words->addStretch();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(theme::step, 0, theme::step, 0);
    row->setSpacing(theme::step);
    row->addWidget(&picture);
    row->addLayout(words, 1);
    for (QLabel* label : {&picture, static_cast<QLabel*>(&name), &note})
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(this, &QToolButton::clicked, this, &vehicle_button::offer_vehicles);
    set_note(QStringLiteral("Current vehicle"), false);
}

void vehicle_button::show_vehicle(const QString& its_name, const QImage& image) {
    name.set_text(its_name);
    setAccessibleName(QStringLiteral("Current vehicle %1").arg(its_name));
    if (!image.isNull())
        picture.setPixmap(rounded_picture(image, picture_size, devicePixelRatioF()));
    updateGeometry();
}

void vehicle_button::set_note(const QString& words, bool as_chip) {
    theme::mark(note, "role", as_chip ? QStringLiteral("chip") : QStringLiteral("small"));
    note.setText(words);
    updateGeometry();
}

// Popped up by hand: a button's own menu runs an event loop.
void vehicle_button::offer_vehicles() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const vehicle& one : vehicles.load_vehicles()) {
        QAction* action = menu->addAction(QString(one.name).replace(u'&', QStringLiteral("&&")));
        action->setCheckable(true);
        action->setChecked(vehicles.is_current(one.id));
        connect(action, &QAction::triggered, this, [this, id = one.id] { Q_EMIT chosen(id); });
    }
    menu->addSeparator();
    menu->addAction(QStringLiteral("New vehicle..."), this, &vehicle_button::new_one_wanted);
    menu->addAction(QStringLiteral("All vehicles"), this, &vehicle_button::all_wanted);
    menu->popup(mapToGlobal(QPoint(0, height())));
}

QSize vehicle_button::sizeHint() const {
    const int words = std::max(name.sizeHint().width(), note.sizeHint().width());
    return {std::clamp(words + picture_size.width() + 4 * theme::step, narrowest, widest),
            layout()->sizeHint().height()};
}

QSize vehicle_button::minimumSizeHint() const {
    return {narrowest, layout()->minimumSize().height()};
}

} // namespace brivant
