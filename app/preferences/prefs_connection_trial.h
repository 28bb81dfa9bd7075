#pragma once

#include "app/screen/screen_view.h"
#include "diagnostics/readCodes.h"
#include "ui_prefs.h"

namespace brivant {

// "Test connection": sets the adapter up on the chosen link, and says what answered, or which of link,
// adapter and car did not. What the controller tells meanwhile stands beside the button instead of on the
// banner.
class prefs_connection_trial : public QObject, private brivant::screen {
    Q_OBJECT

public:
    // `ui` outlives it; its widgets are those whose names begin with "test_".
    prefs_connection_trial(const Ui::prefs& its_ui, const view_context& its_context,
                           mac_toolies& its_toolies);

    void start();
    void stop();
    // Another link is chosen: stops the test, and takes back what one before has told.
    void forget();
    bool is_running() const { return controller_.is_running(); }
    task_controller& controller() { return controller_; }
    void look_changed();

Q_SIGNALS:
    void finished();

private:
    // How far the test has come.
    enum class reached { nothing, link, adapter, car };

    // screen
    void show_status(const QString& text) override;
    void show_toast(const QString& text) override;
    void show_busy(bool busy) override;
    void show_message(const QString& title, const QString& text) override;
    void ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) override;
    void reload(part what) override { context.window.reload(what); }
    void play_sound(int sound) override { context.window.play_sound(sound); }
    void beep() override { context.window.beep(); }

    void note_progress();
    void ended(bool done);
    void show_result(const QString& title, const QString& text);
    QString about_adapter() const;
    void show_failure();
    bool has_no_device() const;
    void show_running(const QString& text);

    const Ui::prefs& ui;
    view_context context;
    mac_toolies& toolies;
    reached far = reached::nothing;
    bool was_stopped = false;
    bool is_another_car = false;
    bool is_good = false;
    QString told;          // by the controller, last
    int told_before = 0;   // car_state::times_told() when it began
    readCodes controller_; // last: it leaves its operation when it goes, and tells so
};

} // namespace brivant
