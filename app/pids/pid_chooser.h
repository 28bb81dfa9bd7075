#pragma once

#include "app/look/card_sheet.h"
#include "app/pids/pid_rows.h"
#include "app/screen/screen_view.h"

#include <QLineEdit>
#include <QStackedWidget>
#include <QTableView>

namespace brivant {

// Chooses what live data samples of the current vehicle: on the left what its ECUs report, on the right what
// is chosen, in order. A change is stored with the vehicle at once. Without a record of the vehicle it says
// how to get one.
class pid_chooser : public QWidget {
    Q_OBJECT

public:
    // `its_context` outlives it.
    explicit pid_chooser(const view_context& its_context, QWidget* parent = nullptr);
    ~pid_chooser() override;

    // Shows the current vehicle as it is stored now.
    void show_vehicle();
    void look_changed();
    const pid_choice& shown() const { return choice; }
    // The list to begin with, null while there is nothing to choose from.
    QWidget* first() const;

Q_SIGNALS:
    // Another set is stored.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void lay_out();
    QWidget* make_empty_page() const;
    QString first_names() const;
    void set_up(QTableView& table, pid_rows& rows, const QString& accessible_name);
    void toggle(const QString& item);
    void remove_current();
    void move_current(int places);
    // The choice has changed; the row `current` of the chosen ones becomes the current one.
    void store(qsizetype current);
    void show_counts();
    bool key_pressed(const QObject* table, int key, bool with_alt);

    view_context context;
    pid_choice choice;

    offered_pids_model offered_rows;
    chosen_pids_model chosen_rows;
    QStackedWidget* pages = nullptr;
    QLineEdit* search = nullptr;
    QTableView* offered = nullptr;
    QTableView* chosen = nullptr;
    QLabel* offered_count = nullptr;
    QLabel* chosen_count = nullptr;
    QLabel* note = nullptr;
    QPushButton* up = nullptr;
    QPushButton* down = nullptr;
    QPushButton* drop = nullptr;
};

// The chooser on a card over the window, for the live-data screen:
//     auto* sheet = new pid_sheet(*this, context);
//     connect(sheet, &pid_sheet::changed, ...);
//     sheet->open();
// It deletes itself.
class pid_sheet : public card_sheet {
    Q_OBJECT

public:
    pid_sheet(QWidget& asked_by, const view_context& its_context);
    void open();

Q_SIGNALS:
    // Another set is stored.
    void changed();

private:
    pid_chooser* chooser = nullptr;
    QPushButton* done = nullptr;
};

} // namespace brivant
