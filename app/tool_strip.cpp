#include "app/tool_strip.h"

#include "app/look/painting.h"

#include <QIcon>
#include <QMenu>
#include <array>

namespace brivant {

namespace {

constexpr int strip_height = 84;
constexpr int icon_size = 32;
constexpr int help_size = 24;
constexpr int picture_width = 84;
constexpr int picture_height = 49;
constexpr int widest_name = 220;
// The number that the marker below the chosen button goes by.
constexpr int marker_tag = 667;
constexpr int marker_width = 32;

struct screen_button {
    screen_kind screen;
    const char* text;
    const char* icon;
    const char* what;
};

// clang-format off
constexpr std::array<screen_button, 5> screens{{
    {screen_kind::diagnostics, "Diagnostics", "diags.png",    "Trouble codes and the tests of the car"},
    {screen_kind::live_data,   "Live data",   "actions.gif",  "Values of the car while it runs"},
    {screen_kind::expert,      "Console",     "obd_mode.png", "Commands of your own"},
    {screen_kind::logs,        "Logs",        "logs.png",     "What was stored"},
    {screen_kind::preferences, "Preferences", "prefs.png",    "Adapter, units, vehicles"},
}};
// clang-format on

} // namespace

tool_strip::tool_strip(QWidget* parent) : QFrame(parent) {
    setProperty("role", QStringLiteral("strip"));
    setFixedHeight(strip_height);
    grid = new QGridLayout(this);
    grid->setContentsMargins(theme::step, theme::step / 2, 2 * theme::step, 0);
    grid->setHorizontalSpacing(theme::step / 2);
    grid->setVerticalSpacing(0);
    grid->setRowStretch(0, 1);
    grid->setRowMinimumHeight(1, theme::step);
    add_buttons();
    const int after = static_cast<int>(screens.size());
    grid->setColumnStretch(after, 1);
    grid->addWidget(&help_button, 0, after + 1, 2, 1, Qt::AlignVCenter);
    grid->addWidget(&menu_button, 0, after + 2, 2, 1, Qt::AlignVCenter);
    add_menu();
    grid->setColumnMinimumWidth(after + 3, theme::step);
    add_vehicle(grid, after + 4);
}

void tool_strip::add_menu() {
    menu_button.setObjectName(QStringLiteral("menu"));
    menu_button.setText(QStringLiteral("Menu"));
    menu_button.setToolTip(QStringLiteral("Help, updates (F10)"));
    menu_button.setShortcut(Qt::Key_F10);
    menu_button.setFocusPolicy(Qt::StrongFocus);
    auto* menu = new QMenu(&menu_button);
    menu->addAction(QStringLiteral("Help\tF1"), this, &tool_strip::help_wanted);
    QAction* updates = menu->addAction(QStringLiteral("Check for updates..."));
    updates->setObjectName(QStringLiteral("check_for_updates"));
    connect(updates, &QAction::triggered, this, &tool_strip::updates_wanted);
    // Popped up by hand: a button's own menu runs an event loop.
    connect(&menu_button, &QToolButton::clicked, menu,
            [this, menu] { menu->popup(menu_button.mapToGlobal(QPoint(0, menu_button.height()))); });
}

void tool_strip::add_buttons() {
    for (int i = 0; i < static_cast<int>(screens.size()); ++i) {
        const screen_button& one = screens[static_cast<size_t>(i)];
        auto* button = new QToolButton;
        button->setObjectName(QStringLiteral("screen_%1").arg(i));
        button->setProperty("role", QStringLiteral("screen"));
        button->setText(QLatin1String(one.text));
        button->setToolTip(QStringLiteral("%1 (Ctrl+%2)").arg(QLatin1String(one.what)).arg(i + 1));
        button->setAccessibleName(QLatin1String(one.text));
        button->setAccessibleDescription(QLatin1String(one.what));
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setIconSize({icon_size, icon_size});
        button->setCheckable(true);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this, [this, button, kind = one.screen] {
            button->setChecked(!button->isChecked()); // mark() decides
            Q_EMIT chosen(kind);
        });
        grid->addWidget(button, 0, i);
        buttons += button;
    }
    help_button.setObjectName(QStringLiteral("help"));
    help_button.setIconSize({help_size, help_size});
    help_button.setToolTip(QStringLiteral("Help (F1)"));
    help_button.setAccessibleName(QStringLiteral("Help"));
    help_button.setFocusPolicy(Qt::StrongFocus);
    connect(&help_button, &QToolButton::clicked, this, &tool_strip::help_wanted);
}

void tool_strip::add_vehicle(QGridLayout* to, int column) {
    picture.setFixedSize(picture_width, picture_height);
    picture.setAccessibleName(QStringLiteral("Picture of the current vehicle"));
    vehicle.setProperty("role", QStringLiteral("strong"));
    vehicle.setMaximumWidth(widest_name);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    words->addStretch();
    words->addWidget(&vehicle);
    words->addWidget(&note_label, 0, Qt::AlignLeft);
    words->addStretch();
    to->addWidget(&picture, 0, column, 2, 1, Qt::AlignVCenter);
    to->addLayout(words, 0, column + 1, 2, 1);
    set_vehicle_note(QStringLiteral("Current vehicle"), false);
}

std::optional<screen_kind> tool_strip::screen_at(int index) {
    if (index < 0 || index >= static_cast<int>(screens.size()))
        return std::nullopt;
    return screens[static_cast<size_t>(index)].screen;
}

void tool_strip::mark(screen_kind kind) {
    const QString name = QString::number(marker_tag);
    delete findChild<QLabel*>(name);
    for (int i = 0; i < buttons.size(); ++i) {
        const bool is_it = screens[static_cast<size_t>(i)].screen == kind;
        buttons[i]->setChecked(is_it);
        if (!is_it)
            continue;
        auto* marker = new QLabel;
        marker->setObjectName(name);
        marker->setProperty("tag", marker_tag);
        marker->setPixmap(QIcon(QStringLiteral(":/artwork/button_selected.png")).pixmap(marker_width));
        grid->addWidget(marker, 1, i, Qt::AlignHCenter | Qt::AlignTop);
    }
}

void tool_strip::show_vehicle(const QString& name, const QImage& image) {
    vehicle.set_text(name);
    if (!image.isNull())
        picture.setPixmap(rounded_picture(image, picture.size(), devicePixelRatioF()));
}

void tool_strip::set_vehicle_note(const QString& note, bool as_chip) {
    theme::mark(note_label, "role", as_chip ? QStringLiteral("chip") : QStringLiteral("small"));
    note_label.setText(note);
}

void tool_strip::set_look(const theme& look) {
    for (int i = 0; i < buttons.size(); ++i)
        buttons[i]->setIcon(look.icon(QLatin1String(screens[static_cast<size_t>(i)].icon)));
    help_button.setIcon(look.icon(QStringLiteral("help.png")));
}

} // namespace brivant
