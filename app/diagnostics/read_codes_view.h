#pragma once

#include "app/diagnostics/codes_page.h"
#include "app/diagnostics/report_button.h"
#include "app/diagnostics/result_page.h"

#include <memory>
#include <vector>

namespace brivant {

// The diagnostics screen: a rail of pages on the left, and the controller that all of them share.
class read_codes_view : public screen_view {
    Q_OBJECT

public:
    explicit read_codes_view(const view_context& its_context);
    ~read_codes_view() override;

    task_controller* controller() override { return &codes_controller; }
    void start() override;
    void stop() override;
    void reload(part what) override;
    void show_busy(bool) override;
    void regain_focus() override { codes_controller.regainFocus(); }
    void look_changed() override;

private:
    template <class page, class... cells>
    void add_page(const result_words& words, cells&&... its_cells);
    void add_pages();

    const Ui::read_codes_view ui;
    readCodes codes_controller;
    codes_page codes;
    std::vector<std::unique_ptr<result_page>> others; // in the order of the rail, below the codes
    report_button report;
};

} // namespace brivant
