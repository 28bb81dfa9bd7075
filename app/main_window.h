#pragma once

#include "app/device_chooser.h"
#include "app/links/check_sheet.h"
#include "app/links/links_sheet.h"
#include "app/look/help_panel.h"
#include "app/look/notice_banner.h"
#include "app/look/question_sheet.h"
#include "app/look/toast_overlay.h"
#include "app/screen/screen_view.h"
#include "app/screen/status_strip.h"
#include "app/sound_player.h"
#include "app/tool_strip.h"

#include <QVBoxLayout>
#include <QWidget>
#include <memory>

namespace brivant {

// The window: the tool strip on top, notices, one of the five screens, and the status line. It is all that
// the controllers see of the world, and it owns the delegate. `core` outlives it.
class main_window : public QWidget, public brivant::screen, public main_area, private window_frame {
    Q_OBJECT

public:
    explicit main_window(program_core& its_core);
    ~main_window() override;

    // Opens the database, takes the link that was asked for, and shows the first screen.
    void start();
    // What a button of the tool strip does. The screen that is shown already stays as it is.
    void choose_screen(screen_kind kind);
    screen_kind current_screen() const { return delegate.current_screen(); }

    // screen
    void show_status(const QString& text) override;
    void show_toast(const QString& text) override;
    void show_busy(bool busy) override;
    void show_message(const QString& title, const QString& text) override;
    void ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) override;
    void ask_same_car(const QString& title, const QString& text, std::function<void(bool)> answer) override;
    void choose_device(const QString& why, device_chooser::answer answer) override;
    void reload(part what) override;
    void play_sound(int sound) override { sounds.play(sound); }
    void beep() override;

    // main_area
    void open_screen(screen_kind kind) override;
    task_controller* current_controller() override { return view ? view->controller() : nullptr; }
    void savePrefs() override;
    void set_selected_button(screen_kind kind) override { tools.mark(kind); }
    void set_window_title(const QString& title) override;
    void show_vehicle(const QString& name, const QImage& image) override {
        tools.vehicle().show_vehicle(name, image);
    }
    void pop_helpy(const QString& title, const QString& html, const QString& icon) override;
    void regain_focus() override;

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // window_frame
    void tell(const notice& what) override { banner.add(what); }
    void ask(const QString& title, const QString& text, const question_sheet::answers& words,
             std::function<void(bool)> answer) override;
    void go_to(screen_kind kind) override;
    const theme& look() const override { return colours; }
    void settings_changed() override { show_surroundings(); }
    void open_links() override;
    bool link_is_as_started() const override { return core.place.now() == started_with; }

    void lay_out();
    void add_keys();
    void apply_look();
    void restore_place();
    void show_surroundings();
    void toggle_help();
    void open_updates();
    void open_check();
    void add_vehicle();
    void choose_vehicle(int veh_id);
    void grant(tool_strip::wish what);
    void open_demo(const QString& car);
    void greet();
    view_context for_screens() { return {core, delegate, delegate.link, *this, *this}; }
    void escape();
    void refuse_questions();
    std::unique_ptr<screen_view> make_view(screen_kind kind);
    bool is_demo() const;

    program_core& core;
    Bv_lite_delegate delegate;
    theme colours;
    sound_player sounds;
    adapter_address started_with;

    tool_strip tools;
    notice_banner banner;
    QWidget area;
    QVBoxLayout* area_room = nullptr;
    status_strip status;
    toast_overlay toast;
    help_panel help;
    question_sheet sheet;
    QPointer<device_chooser> chooser;
    QPointer<links_sheet> links;
    QPointer<check_sheet> check;
    std::unique_ptr<screen_view> view;
};

} // namespace brivant
