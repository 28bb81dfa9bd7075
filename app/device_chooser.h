#pragma once

#include "app/look/busy_marks.h"
#include "app/look/card_sheet.h"
#include "app/look/theme.h"
#include "link/bluetooth_scanner.h"

#include <QStackedWidget>
#include <QTableWidget>
#include <functional>

namespace brivant {

// The list of Bluetooth devices on a card over the window, kept up to date while it is shown. The answer
// comes through a callback, exactly once: the address and the name of the device, or two empty texts for
// none; the address of a Bluetooth LE device as the text of an adapter_address. It deletes itself.
class device_chooser : public card_sheet {
    Q_OBJECT

public:
    using answer = std::function<void(const QString& address, const QString& name)>;

    // `last_used`: the address of the device before, "" for none. `why`: why the list is shown when nobody
    // asked for it, "" when somebody did. `clock` outlives it.
    device_chooser(QWidget& asked_by, const theme& look, timers& clock, const QString& last_used,
                   const QString& why, answer its_answer);
    ~device_chooser() override;

    void open();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void set_up_list();
    QWidget* make_empty_page(const theme& look);
    void show_surroundings();
    QList<bluetooth_device> offered() const;
    void show_devices(const QList<bluetooth_device>& rows);
    void show_hint();
    void select_first_choice();
    void take_selected();
    void finish_without();
    // Null when nothing is selected.
    const bluetooth_device* selected() const;

    bluetooth_scanner scanner;
    answer waiting;
    QString last_address;
    QList<bluetooth_device> shown; // a row each

    QStackedWidget* pages;
    QTableWidget* list;
    QLabel* empty_text;
    QLabel* empty_note;
    QPushButton* more;
    busy_bar* progress;
    QLabel* sentence;
    QPushButton* rescan;
    QPushButton* take;
    QPushButton* cancel;
};

} // namespace brivant
