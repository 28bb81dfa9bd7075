#pragma once

#include "app/look/theme.h"
#include "app/screen/link_mark.h"
#include "app/vehicle_button.h"
#include "shell/main_area.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QList>
#include <QToolButton>
#include <optional>

class QMenu;

namespace brivant {

// The bar on top of the window: the five screens, the link, the current vehicle, and the menu.
class tool_strip : public QFrame {
    Q_OBJECT

public:
    explicit tool_strip(vehicle_list& vehicles, QWidget* parent = nullptr);

    // The screen of the button with that index, from the left.
    static std::optional<screen_kind> screen_at(int index);

    void mark(screen_kind kind);
    void set_look(const theme& look);
    link_mark& link() { return its_link; }
    vehicle_button& vehicle() { return its_vehicle; }

    // What the menu offers; the window has their keys.
    enum class wish { links, full_screen, help, keys, updates, about, quit };

Q_SIGNALS:
    void chosen(brivant::screen_kind kind);
    void wished(brivant::tool_strip::wish what);
    // The demo car of that name is to be opened in a window of its own.
    void demo_wanted(const QString& car);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void add_buttons(QHBoxLayout& row);
    QMenu* make_menu();

    QList<QToolButton*> buttons;
    link_mark its_link;
    vehicle_button its_vehicle;
    QToolButton menu_button;
    QColor accent;
};

} // namespace brivant
