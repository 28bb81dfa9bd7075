#pragma once

#include "app/look/theme.h"
#include "diagnostics/verdict.h"
#include "ui_read_codes_view.h"

namespace brivant {

// The band on top: the answer at arm's length, and the lamp, the monitors and the car beside it.
class verdict_band : public QObject {
    Q_OBJECT

public:
    explicit verdict_band(const Ui::read_codes_view& its_ui);

    bool eventFilter(QObject* watched, QEvent* event) override;

    void show(const verdict& told, const theme& look);
    // The lamp and the announced codes; `is_known`: they were read.
    void show_lamp(const car_status& status, bool is_known, const theme& look);
    // The car's name, and "Read on: ...".
    void show_car(const QString& name, const QString& read_on);
    // The sizes of text have changed.
    void look_changed();

private:
    void fit();

    const Ui::read_codes_view& ui;
};

} // namespace brivant
