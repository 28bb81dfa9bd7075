#pragma once

#include "app/diagnostics/codes_model.h"
#include "app/diagnostics/readiness_model.h"
#include "app/diagnostics/reading_bar.h"
#include "app/screen/operation_head.h"
#include "diagnostics/permanent_codes.h"
#include "diagnostics/second_status.h"
#include "ui_read_codes_view.h"

namespace brivant {

// The page of the trouble codes: the codes, the permanent ones below them once they were read, the MIL, the
// readiness of the monitors, and facts about the read.
class codes_page : public QObject {
    Q_OBJECT

public:
    codes_page(const Ui::read_codes_view& its_ui, const view_context& its_context, readCodes& its_controller);

    void start();
    // The names of base/screen.h: "codes", "permanent", "readiness", "labels", "progress", "operation";
    // "reading": the other of the two readings is shown from now on.
    void reload(part what);
    void show_operation();
    void look_changed();

private:
    void set_up_tables();
    void show_reading();
    void show_codes();
    void show_permanent();
    void show_readiness();
    void show_labels();

    const Ui::read_codes_view& ui;
    view_context context;
    readCodes& controller;
    diagnostic_results& results;
    second_reading reading;
    codes_model codes;
    second_status status;
    permanent_codes permanent;
    codes_model permanent_rows;
    QList<readiness_row> monitors; // since the codes were cleared, then of this drive cycle
    readiness_model readiness;

    operation_head head;
    reading_bar& bar;
};

} // namespace brivant
