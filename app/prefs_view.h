#pragma once

#include "app/screen_view.h"
#include "shell/preferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

// The preferences screen. What is changed is stored at once; what is typed wrongly is told beside the field,
// and the value before it stays.
class prefs_view : public screen_view {
    Q_OBJECT

public:
    explicit prefs_view(const view_context& its_context);

    void save() override { savePrefs(); }

private:
    void connect_fields();
    void setPrefsScreen();
    void savePrefs();
    void setDefaultsClicked();
    void handle_interface();
    void show_problems();
    void tell_unless(bool written);
    general_settings chosen() const;

    mac_toolies toolies;
    preferences settings;
    bool filling = false;

    QRadioButton& bluetooth;
    QRadioButton& wifi;
    QWidget& wifi_pane;
    QLabel& run_note;
    QLineEdit& address;
    QLabel& address_problem;
    QLineEdit& port;
    QLabel& port_problem;
    QCheckBox& metric_units;
    QCheckBox& log_runs;
    QCheckBox& time_stamps;
    QComboBox& sample_rate;
};
