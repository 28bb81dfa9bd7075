#pragma once

#include "app/look/elided_label.h"
#include "app/look/theme.h"
#include "shell/main_area.h"

#include <QFrame>
#include <QGridLayout>
#include <QList>
#include <QToolButton>
#include <optional>

namespace brivant {

// The bar on top of the window: the five screens, help, and the current vehicle.
class tool_strip : public QFrame {
    Q_OBJECT

public:
    explicit tool_strip(QWidget* parent = nullptr);

    // The screen of the button with that index, from the left.
    static std::optional<screen_kind> screen_at(int index);

    void mark(screen_kind kind);
    void show_vehicle(const QString& name, const QImage& image);
    // The small line below the vehicle's name.
    void set_vehicle_note(const QString& note, bool as_chip);
    void set_look(const theme& look);

Q_SIGNALS:
    void chosen(screen_kind kind);
    void help_wanted();
    void updates_wanted();

private:
    void add_buttons();
    void add_menu();
    void add_vehicle(QGridLayout* to, int column);

    QList<QToolButton*> buttons;
    QGridLayout* grid = nullptr;
    QToolButton help_button;
    QToolButton menu_button;
    QLabel picture;
    elided_label vehicle;
    QLabel note_label;
};

} // namespace brivant
