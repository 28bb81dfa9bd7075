#pragma once

#include "app/look/notice_banner.h"
#include "app/look/question_sheet.h"
#include "app/look/theme.h"
#include "shell/Bv_lite_delegate.h"
#include "shell/program_core.h"

#include <QWidget>

namespace brivant {

// What a screen asks of the window around it, beyond what a controller asks.
class window_frame {
public:
    virtual ~window_frame() = default;

    virtual void tell(const notice& what) = 0;
    // As screen::ask_yes_no(), with other words on the buttons.
    virtual void ask(const QString& title, const QString& text, const question_sheet::answers& words,
                     std::function<void(bool)> answer) = 0;
    // Changes the screen, a moment later: the one that asks for it may be the one that goes.
    virtual void go_to(screen_kind kind) = 0;
    virtual const theme& look() const = 0;
    // A text over the screen, until it is closed. `html` loads nothing but the program's artwork.
    virtual void pop_helpy(const QString& title, const QString& html, const QString& icon) = 0;
    // Settings that the window shows have changed.
    virtual void settings_changed() = 0;
    // The card of links, over the screen.
    virtual void open_links() = 0;
    // False once another link was chosen than the one that the program was started with.
    virtual bool link_is_as_started() const = 0;
};

// What the screens work with; all of it outlives them.
struct view_context {
    program_core& core;
    Bv_lite_delegate& delegate;
    adapter_link& link;
    screen& window;
    window_frame& frame;
};

// Makes the widgets of a view description in `place`: Ui::NAME is that of resources/views/NAME.ui.
template <class description>
description laid_out_in(QWidget& place) {
    description its;
    its.setupUi(&place);
    return its;
}

// One of the five screens: the widgets of its description, and the controller behind them.
class screen_view : public QWidget {
    Q_OBJECT

public:
    explicit screen_view(const view_context& its_context) : context(its_context) {}

    // Null when nothing on the screen takes replies.
    virtual task_controller* controller() { return nullptr; }
    // The keys F5 and Esc.
    virtual void start() {}
    virtual void stop() {}
    // See base/screen.h.
    virtual void reload(part) {}
    virtual void show_busy(bool) {}
    virtual void regain_focus() {}
    // Stores what was edited.
    virtual void save() {}
    // The colours have changed; also called once when the screen is in its place.
    virtual void look_changed() {}
    // The screen was opened.
    void take_focus() { (first ? first : this)->setFocus(); }

protected:
    // No focus proxy: from one, the Tab key skips what stands before it.
    void begin_at(QWidget& widget) { first = &widget; }

    view_context context;

private:
    QWidget* first = nullptr;
};

} // namespace brivant
