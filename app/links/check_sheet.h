#pragma once

#include "app/look/busy_marks.h"
#include "app/look/card_sheet.h"
#include "base/screen.h"
#include "livedata/link_check.h"
#include "shell/Bv_lite_delegate.h"
#include "shell/program_core.h"

#include <QTableWidget>

namespace brivant {

// The card of the adapter check: what was found out about the adapter in use, and the verdict. The check
// takes the link for as long as the card is open; what ran before has ended.
class check_sheet : public card_sheet, private brivant::screen {
    Q_OBJECT

public:
    // `back_to`: whose controller gets the link back. All that it is given outlives it.
    check_sheet(QWidget& asked_by, program_core& its_core, Bv_lite_delegate& its_delegate,
                std::function<task_controller*()> back_to);
    ~check_sheet() override { give_back(); }

    void open_and_check();

private:
    // screen
    void show_status(const QString& text) override { said->setText(text.simplified()); }
    void show_toast(const QString&) override {}
    void show_busy(bool) override {}
    void show_message(const QString&, const QString& text) override { said->setText(text); }
    // Whether the car is the current vehicle does not matter here.
    void ask_yes_no(const QString&, const QString&, std::function<void(bool)> answer) override {
        answer(false);
    }
    void reload(part) override {}
    void play_sound(int) override {}
    void beep() override {}

    void check_or_stop();
    void show_findings();
    void give_back();

    program_core& core;
    Bv_lite_delegate& delegate;
    std::function<task_controller*()> give_link_back;
    QLabel* verdict;
    QTableWidget* facts;
    busy_bar* progress;
    QLabel* said;
    QPushButton* again;
    QPushButton* done;
    link_check check; // last: it leaves its operation when it goes, and tells so
};

} // namespace brivant
