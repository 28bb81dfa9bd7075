#pragma once

#include "app/look/card_sheet.h"
#include "shell/program_core.h"

#include <QRadioButton>

namespace brivant {

// The card of the first start, shown once: how the adapter is reached, and in which units. "Later" is an
// answer.
class first_start_sheet : public card_sheet {
    Q_OBJECT

public:
    first_start_sheet(QWidget& asked_by, program_core& its_core);

    // Nothing was ever chosen in this profile, and no link was given on the command line.
    static bool is_due(const program_core& core);
    void open_first();

Q_SIGNALS:
    void find_wanted();
    void links_wanted();
    void wifi_wanted();
    void demo_wanted();
    void units_chosen();

private:
    void offer(const char* name, const QString& text, const QString& words,
               void (first_start_sheet::*wanted)());
    void keep_units();

    program_core& core;
    QRadioButton* metric;
    QRadioButton* imperial;
    QPushButton* first = nullptr;
};

} // namespace brivant
