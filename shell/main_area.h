#pragma once

#include "link/task_controller.h"

#include <QImage>
#include <QString>

namespace brivant {

enum class screen_kind { diagnostics, live_data, preferences, expert, logs };

// What the delegate asks of the window around the five screens. The terminal program has none.
class main_area {
public:
    virtual ~main_area() = default;

    // Releases the screen that is shown and shows the named one, made anew.
    virtual void open_screen(screen_kind kind) = 0;
    // The controller of the shown screen that takes replies, or null.
    virtual task_controller* current_controller() = 0;
    // Stores what was edited on the preferences screen, when that is the one shown.
    virtual void savePrefs() = 0;
    virtual void set_selected_button(screen_kind kind) = 0;
    virtual void set_window_title(const QString& title) = 0;
    // A null image leaves the picture as it is.
    virtual void show_vehicle(const QString& name, const QImage& image) = 0;
    virtual void pop_helpy(const QString& title, const QString& html, const QString& icon) = 0;
    virtual void regain_focus() = 0;
};

} // namespace brivant
