#pragma once

#include "app/diagnostics/code_list_model.h"
#include "app/diagnostics/code_pane.h"
#include "app/diagnostics/reading_bar.h"
#include "app/diagnostics/verdict_band.h"
#include "app/screen/operation_head.h"

namespace brivant {

// The page that answers how the car fares: the verdict, the codes of all kinds with the chosen one beside
// them, the readiness of the monitors, and facts about the read.
class codes_page : public QObject {
    Q_OBJECT

public:
    codes_page(const Ui::read_codes_view& its_ui, const view_context& its_context, readCodes& its_controller);

    void start();
    // The names of base/screen.h; part::reading: the other of the two readings is shown from now on.
    void reload(part what);
    void show_operation();
    void look_changed();
    code_pane& pane() { return chosen; }

private:
    void set_up_table();
    void read_again();
    void show_codes();
    int row_to_choose() const;
    void show_empty(const verdict& told);
    void show_chosen();
    void show_verdict();
    void show_readiness();
    void show_labels();
    void show_progress();

    const Ui::read_codes_view& ui;
    view_context context;
    readCodes& controller;
    diagnostic_results& results;
    second_reading confirmed;
    second_reading pending;
    second_reading frame;
    second_reading vehicle;
    second_reading tests;
    second_status status;
    permanent_codes permanent;
    code_list codes;
    code_list_model model;

    operation_head head;
    reading_bar& bar;
    verdict_band band;
    code_pane chosen;
    listed_code shown; // in the pane
};

} // namespace brivant
