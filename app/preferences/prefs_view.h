#pragma once

#include "app/pids/pid_chooser.h"
#include "app/preferences/prefs_connection_trial.h"
#include "app/preferences/prefs_vehicles.h"
#include "shell/preferences.h"

namespace brivant {

// The preferences screen. What is changed is stored at once; what is typed wrongly is told beside the field,
// and the value before it stays.
class prefs_view : public screen_view {
    Q_OBJECT

public:
    explicit prefs_view(const view_context& its_context);

    task_controller* controller() override { return &connection.controller(); }
    // F5 tests the connection, Esc stops the test.
    void start() override { test_connection(); }
    void stop() override;
    void save() override { savePrefs(); }
    void look_changed() override;

private:
    void connect_fields();
    void connect_tabs();
    void test_connection();
    void setPrefsScreen();
    void savePrefs();
    void choose_other_link(bool is_on);
    QString words_of_other_link() const;
    void setDefaultsClicked();
    void set_defaults();
    void handle_interface();
    void show_device();
    void show_problems();
    void tell_unless(bool written);
    general_settings chosen() const;

    const Ui::prefs ui;
    preferences settings;
    bool filling = false;
    QString other_link; // as it is stored, or was before another kind was chosen

    prefs_connection_trial connection;
    pid_chooser& pids;
    prefs_vehicles vehicles;
};

} // namespace brivant
