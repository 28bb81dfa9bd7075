#pragma once

#include "app/logs/log_actions.h"
#include "app/logs/logs_model.h"
#include "app/screen/screen_view.h"
#include "ui_logsDB_view.h"

#include <QButtonGroup>

namespace brivant {

// The log browser: the list with its two filters, a preview of the selected log, and what can be done with
// the selected ones.
class logs_view : public screen_view {
    Q_OBJECT

public:
    explicit logs_view(const view_context& its_context);
    ~logs_view() override;

    void start() override { load(); }
    void stop() override { actions.stop(); }
    void look_changed() override;
    void reload(part what) override;

    void viewLog();
    void plotClicked();
    void handle_export(bool as_txt, const run_format* format = nullptr);
    void copyClicked() { actions.copy(selected()); }
    void deleteClicked() { actions.delete_logs(selected()); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void set_up_filters();
    void order_for_tab();
    void set_up_table();
    void connect_buttons();
    void load();
    void read_block();
    void show_list();
    QString empty_words() const;
    QList<log_header> selected() const;
    // The same, and a message when nothing is selected.
    QList<log_header> selected_or_told() const;
    void selection_changed();
    void show_preview();
    void show_deletion();

    const Ui::logsDB_view ui;
    manage_logsDB manager;
    logs_model model;
    QButtonGroup kinds;
    log_actions actions;

    timer_handle next_block;
    timer_handle next_preview;
};

} // namespace brivant
