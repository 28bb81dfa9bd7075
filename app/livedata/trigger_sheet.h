#pragma once

#include "app/look/card_sheet.h"
#include "livedata/actions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace brivant {

// When the next runs are stored: from the moment that a value is crossed, with the seconds before it, until
// another one is. It deletes itself.
class trigger_sheet : public card_sheet {
    Q_OBJECT

public:
    // The controller outlives it.
    trigger_sheet(QWidget& asked_by, brivant::actions& its_controller);
    void open() { card_sheet::open(*when.pid); }

Q_SIGNALS:
    // The controller has another choice.
    void changed();

private:
    struct limit_row {
        QComboBox* pid;
        QComboBox* way;
        QLineEdit* value;
    };
    limit_row add_limit(QGridLayout& grid, int row, const QString& what, const char* name);
    void add_before(QGridLayout& grid);
    void add_until(QGridLayout& grid);
    static void show_limit(const limit_row& row, const pid_limit& limit);
    std::optional<pid_limit> limit_of(const limit_row& row);
    void set();
    void refuse(QWidget& where, const QString& sentence);

    brivant::actions& controller; // a widget has actions too
    limit_row when{};
    QLineEdit* before = nullptr;
    QCheckBox* ends = nullptr;
    limit_row until{};
    QLabel* problem = nullptr;
};

} // namespace brivant
