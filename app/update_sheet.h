#pragma once

#include "app/look/busy_marks.h"
#include "app/look/card_sheet.h"
#include "shell/program_core.h"
#include "updates/update_check.h"

#include <QLineEdit>

namespace brivant {

// The card that asks the update server for a newer version, and fetches its archive. The address of the
// server is stored when it is asked. Closing it ends what is under way.
class update_sheet : public card_sheet {
    Q_OBJECT

public:
    update_sheet(QWidget& asked_by, program_core& its_core);

    // Shows it, and asks the server at once where one is set.
    void open_and_check();

private:
    void lay_out();
    void check();
    void download();
    void step_done(const QString& problem);
    void show_progress(qint64 received, qint64 total);
    void show_state();
    void say(const QString& sentence, bool is_problem);

    program_core& core;
    update_check updates{QStringLiteral(BV_VERSION)};
    QLineEdit server;
    busy_bar bar;
    QLabel* said = nullptr;
    QPushButton* close_button = nullptr;
    QPushButton* stop_button = nullptr;
    QPushButton* check_button = nullptr;
    QPushButton* download_button = nullptr;
};

} // namespace brivant
