#pragma once

#include "app/look/card_sheet.h"

#include <QLineEdit>
#include <QStringList>
#include <array>

namespace brivant {

// Asks for the four values of a script. OK stays on the card while one of them is wrong, and says which; it
// deletes itself.
class script_dialog : public card_sheet {
    Q_OBJECT

public:
    // `asked_by`: a widget of the screen. `prevVals`: template, from, to, number of loops.
    script_dialog(QWidget& asked_by, const QStringList& prevVals);
    void open() { card_sheet::open(*fields.front()); }

Q_SIGNALS:
    // OK was pressed, and the values are good.
    void accepted(const QStringList& values);

private:
    void check();
    void click_ok();
    QStringList values() const;

    std::array<QLineEdit*, 4> fields{};
    std::array<QLabel*, 4> problem_labels{};
};

} // namespace brivant
