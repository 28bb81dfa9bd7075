#pragma once

#include "app/screen/screen_view.h"
#include "diagnostics/second_reading.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

namespace brivant {

// The line below results that are read otherwise by SAE J1979, and the switch that shows that reading in
// their place. Out of sight while both readings are the same and the program's own is shown.
class reading_bar : public QWidget {
    Q_OBJECT

public:
    // Goes into the column of a page, behind its cards.
    reading_bar(QVBoxLayout& column, const QLayout& cards, const view_context& its_context);

    // What stands beside each list, a line each; `more`: what is said beside them, "" for nothing.
    void show_lines(const QList<const second_reading*>& readings, const QString& more = QString());

private:
    view_context context;
    QLabel& line;
    QCheckBox& standard_reading;
};

} // namespace brivant
