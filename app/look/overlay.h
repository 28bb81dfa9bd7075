#pragma once

#include <QWidget>

namespace brivant {

// A widget that lies over its parent and follows its size. Each kind places itself.
class overlay : public QWidget {
    Q_OBJECT

public:
    explicit overlay(QWidget* over);

protected:
    virtual void place(const QRect& room) = 0;
    // Places it anew, shows it and brings it to the front.
    void show_on_top();
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace brivant
