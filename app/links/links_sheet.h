#pragma once

#include "app/look/busy_marks.h"
#include "app/look/card_sheet.h"
#include "shell/Bv_lite_delegate.h"
#include "shell/link_rows.h"
#include "shell/program_core.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSet>
#include <QTableWidget>

namespace brivant {

// The card of links (Ctrl+L): every adapter that is known or around, which of them is used, and the search
// for one. Nothing is asked before the person presses "Find my adapter".
class links_sheet : public card_sheet {
    Q_OBJECT

public:
    // All that it is given outlives it.
    links_sheet(QWidget& asked_by, program_core& its_core, Bv_lite_delegate& its_delegate);
    ~links_sheet() override { finder.stop(); }

    void open();
    void find();

Q_SIGNALS:
    // The adapter of that name is used from now on.
    void chosen(const QString& name);
    // The adapter in use is to be checked.
    void check_wanted();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void lay_out();
    void look_around();
    void show_rows();
    void show_row(int at, const link_row& row);
    void show_state();
    void find_or_stop();
    void use_selected();
    void rename_selected();
    void note_tick(QTableWidgetItem* item);
    void tell_unless(bool is_stored);
    // Null when nothing is selected.
    const link_row* selected() const;

    program_core& core;
    Bv_lite_delegate& delegate;
    adapter_list& adapters;
    adapter_finder finder;
    bluetooth_service service;
    links_around around;
    timer_handle next_look;
    QList<link_row> rows; // shown, a row each
    QSet<QString> ticked; // serial ports that are asked although nothing is known of them
    bool is_filling = false;

    QTableWidget* list;
    busy_bar* progress;
    QLabel* sentence;
    QLineEdit* name;
    QCheckBox* any;
    QCheckBox* preferred;
    QCheckBox* more;
    QPushButton* search;
    QPushButton* use;
    QPushButton* check;
    QPushButton* forget;
    QPushButton* done;
};

} // namespace brivant
