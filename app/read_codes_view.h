#pragma once

#include "app/codes_page.h"

#include <QListWidget>
#include <memory>

// The diagnostics screen: a rail of pages on the left, and the controller that all of them share.
class read_codes_view : public screen_view {
    Q_OBJECT

public:
    explicit read_codes_view(const view_context& its_context);
    ~read_codes_view() override;

    task_controller* controller() override { return &codes_controller; }
    void start() override;
    void stop() override;
    void reload(const QString& list) override { codes.reload(list); }
    void show_busy(bool) override { codes.show_operation(); }
    void regain_focus() override { codes_controller.regainFocus(); }
    void look_changed() override;

private:
    void show_page(int row);

    mac_toolies toolies;
    readCodes codes_controller;
    QListWidget& rail;
    QStackedWidget& pages;
    codes_page codes;
};
