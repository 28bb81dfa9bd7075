#include "app/tool_strip.h"

#include "tools/virtual_adapter/car_catalogue.h"

#include <QIcon>
#include <QMenu>
#include <QPainter>
#include <array>

namespace brivant {

namespace {

constexpr int least_height = 48;
constexpr int icon_size = 24;
constexpr int marker_height = 3;

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

struct menu_entry {
    tool_strip::wish what;
    const char* text; // with its key
    const char* name;
};

constexpr std::array<menu_entry, 7> entries{{
    {tool_strip::wish::links, "Links...\tCtrl+L", "menu_links"},
    {tool_strip::wish::full_screen, "Full screen\tF11", "menu_full_screen"},
    {tool_strip::wish::help, "Help\tF1", "menu_help"},
    {tool_strip::wish::keys, "Shortcuts\t?", "menu_keys"},
    {tool_strip::wish::updates, "Check for updates...", "check_for_updates"},
    {tool_strip::wish::about, "About", "menu_about"},
    {tool_strip::wish::quit, "Quit\tCtrl+Q", "menu_quit"},
}};

} // namespace

tool_strip::tool_strip(vehicle_list& vehicles, QWidget* parent) : QFrame(parent), its_vehicle(vehicles) {
    setProperty("role", QStringLiteral("strip"));
    setMinimumHeight(least_height);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(theme::step, 2, theme::step, 2);
    row->setSpacing(theme::step / 2);
    add_buttons(*row);
    row->addStretch(1);
    row->addWidget(&its_link);
    row->addWidget(&its_vehicle);
    menu_button.setObjectName(QStringLiteral("menu"));
    menu_button.setText(QStringLiteral("Menu"));
    menu_button.setToolTip(QStringLiteral("Demo cars, full screen, help, about (F10)"));
    menu_button.setShortcut(Qt::Key_F10);
    menu_button.setFocusPolicy(Qt::StrongFocus);
    row->addWidget(&menu_button);
    // Popped up by hand: a button's own menu runs an event loop.
    connect(&menu_button, &QToolButton::clicked, this, [this, menu = make_menu()] {
        menu->popup(menu_button.mapToGlobal(QPoint(0, menu_button.height())));
    });
}

QMenu* tool_strip::make_menu() {
    auto* menu = new QMenu(&menu_button);
    QMenu* cars = menu->addMenu(QStringLiteral("Demo cars"));
    for (const QString& car : virtual_adapter::built_in_cars())
        cars->addAction(car, this, [this, car] { Q_EMIT demo_wanted(car); });
    for (const menu_entry& entry : entries) {
        QAction* action = menu->addAction(QLatin1String(entry.text));
        action->setObjectName(QLatin1String(entry.name));
        connect(action, &QAction::triggered, this, [this, what = entry.what] { Q_EMIT wished(what); });
    }
    return menu;
}

void tool_strip::add_buttons(QHBoxLayout& row) {
    for (int i = 0; i < static_cast<int>(screens.size()); ++i) {
        const screen_button& one = screens[static_cast<size_t>(i)];
        auto* button = new QToolButton;
        button->setObjectName(QStringLiteral("screen_%1").arg(i));
        button->setProperty("role", QStringLiteral("screen"));
        button->setText(QLatin1String(one.text));
        button->setToolTip(QStringLiteral("%1 (Ctrl+%2)").arg(QLatin1String(one.what)).arg(i + 1));
        button->setAccessibleName(QLatin1String(one.text));
        button->setAccessibleDescription(QLatin1String(one.what));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setIconSize({icon_size, icon_size});
        button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this, [this, kind = one.screen] { Q_EMIT chosen(kind); });
        row.addWidget(button);
        buttons += button;
    }
}

std::optional<screen_kind> tool_strip::screen_at(int index) {
    if (index < 0 || index >= static_cast<int>(screens.size()))
        return std::nullopt;
    return screens[static_cast<size_t>(index)].screen;
}

// A property instead of a check: a screen reader would call the buttons check boxes.
void tool_strip::mark(screen_kind kind) {
    for (int i = 0; i < buttons.size(); ++i) {
        const screen_button& one = screens[static_cast<size_t>(i)];
        const bool is_it = one.screen == kind;
        theme::mark(*buttons[i], "current", is_it);
        buttons[i]->setAccessibleName(is_it ? QStringLiteral("%1, shown").arg(QLatin1String(one.text))
                                            : QLatin1String(one.text));
    }
    update();
}

// A line below the screen that is shown.
void tool_strip::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    for (const QToolButton* button : std::as_const(buttons)) {
        if (button->property("current").toBool())
            painter.fillRect(button->x() + theme::step, height() - marker_height,
                             button->width() - 2 * theme::step, marker_height, accent);
    }
}

void tool_strip::set_look(const theme& look) {
    accent = look.accent;
    for (int i = 0; i < buttons.size(); ++i)
        buttons[i]->setIcon(look.icon(QLatin1String(screens[static_cast<size_t>(i)].icon)));
}

} // namespace brivant
