#include "app/diagnostics/reading_bar.h"

#include "app/screen/reading_choice.h"

#include <QSignalBlocker>
#include <algorithm>

namespace brivant {

reading_bar::reading_bar(QVBoxLayout& column, const QLayout& cards, const view_context& its_context)
    : context(its_context), line(*new QLabel(this)),
      standard_reading(*new QCheckBox(QStringLiteral("Standard reading"), this)) {
    setObjectName(QStringLiteral("reading_bar"));
    line.setObjectName(QStringLiteral("reading_line"));
    line.setTextFormat(Qt::PlainText);
    line.setWordWrap(true);
    line.setTextInteractionFlags(Qt::TextSelectableByMouse);
    line.setAccessibleName(QStringLiteral("What the other reading says"));
    theme::mark(line, "role", QStringLiteral("muted"));
    standard_reading.setObjectName(QStringLiteral("standard_reading"));
    standard_reading.setToolTip(theme::plain_tool_tip(
        QStringLiteral("Shows what the car's replies hold by the standard SAE J1979, in the place of the "
                       "program's own reading. The car is not asked again.")));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(theme::step, 0, theme::step, 0);
    row->setSpacing(2 * theme::step);
    row->addWidget(&line, 1);
    row->addWidget(&standard_reading, 0, Qt::AlignTop);
    column.insertWidget(column.indexOf(&cards) + 1, this);
    hide();
    connect(&standard_reading, &QCheckBox::toggled, this,
            [this](bool standard) { choose_reading(context, standard); });
}

void reading_bar::show_lines(const QList<const second_reading*>& readings, const QString& more) {
    QStringList lines;
    bool standard = false;
    for (const second_reading* reading : readings) {
        standard |= reading->shows_standard();
        if (const QString text = reading->line(); !text.isEmpty())
            lines += text;
    }
    if (!more.isEmpty())
        lines += more;
    const QSignalBlocker quiet(&standard_reading);
    standard_reading.setChecked(standard);
    line.setText(lines.join(u'\n'));
    setVisible(!lines.isEmpty());
}

} // namespace brivant
