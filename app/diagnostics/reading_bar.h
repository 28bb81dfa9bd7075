#pragma once

#include "app/screen/screen_view.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace brivant {

// What is said about results as a whole: that not all was answered, what the other reading says, and the
// switch that shows that reading in their place. Below the results; above them where a person would act on
// it. Out of sight while there is nothing to say.
class reading_bar : public QWidget {
    Q_OBJECT

public:
    // Goes into the column of a page, behind its cards.
    reading_bar(QVBoxLayout& column, const QLayout& cards, const view_context& its_context);

    // What stands beside each list, and, where it was read, the car's status.
    void show_lines(const QList<const second_reading*>& readings, const second_status* status = nullptr);

private:
    // Above the cards, in the colours of a notice; else below them.
    void stand_out(bool above);

    view_context context;
    QVBoxLayout& column;
    const QLayout& cards;
    QLabel& line;
    QPushButton& from_now_on;
    QCheckBox& standard_reading;
};

} // namespace brivant
