#pragma once

#include <QAbstractButton>
#include <QButtonGroup>
#include <QFrame>

namespace brivant {

// Choices side by side of which one holds; the arrow keys go from one to the next.
class segments : public QFrame {
    Q_OBJECT

public:
    explicit segments(QWidget* parent = nullptr);

    void add(const QString& text, const QString& tool_tip = {});
    void set_current(int index) { choices.button(index)->setChecked(true); }
    int current() const { return choices.checkedId(); }
    QAbstractButton& at(int index) const { return *choices.button(index); }

Q_SIGNALS:
    // By the person.
    void chosen(int index);

private:
    QButtonGroup choices;
};

} // namespace brivant
