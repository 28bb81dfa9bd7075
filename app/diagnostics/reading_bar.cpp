#include "app/diagnostics/reading_bar.h"

#include "app/screen/reading_choice.h"

#include <QSignalBlocker>

namespace brivant {

reading_bar::reading_bar(QVBoxLayout& its_column, const QLayout& its_cards, const view_context& its_context)
    : context(its_context), column(its_column), cards(its_cards), line(*new QLabel(this)),
      from_now_on(*new QPushButton(QStringLiteral("Read by SAE J1979 from now on"), this)),
      standard_reading(*new QCheckBox(QStringLiteral("Standard reading"), this)) {
    setObjectName(QStringLiteral("reading_bar"));
    line.setObjectName(QStringLiteral("reading_line"));
    line.setTextFormat(Qt::PlainText);
    line.setWordWrap(true);
    line.setTextInteractionFlags(Qt::TextSelectableByMouse);
    line.setAccessibleName(QStringLiteral("What the other reading says"));
    setAttribute(Qt::WA_StyledBackground);
    from_now_on.setObjectName(QStringLiteral("read_by_standard"));
    standard_reading.setObjectName(QStringLiteral("standard_reading"));
    standard_reading.setToolTip(theme::plain_tool_tip(
        QStringLiteral("Shows what the car's replies hold by the standard SAE J1979, in the place of the "
                       "program's own reading. The car is not asked again.")));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(theme::step, theme::step / 2, theme::step, theme::step / 2);
    row->setSpacing(2 * theme::step);
    row->addWidget(&line, 1);
    row->addWidget(&from_now_on, 0, Qt::AlignVCenter);
    row->addWidget(&standard_reading, 0, Qt::AlignTop);
    column.insertWidget(column.indexOf(&cards) + 1, this);
    hide();
    from_now_on.setToolTip(standard_reading.toolTip());
    connect(&from_now_on, &QPushButton::clicked, this, [this] { choose_reading(context, true); });
    connect(&standard_reading, &QCheckBox::toggled, this,
            [this](bool standard) { choose_reading(context, standard); });
}

void reading_bar::show_lines(const QList<const second_reading*>& readings, const second_status* status) {
    QStringList lines;
    bool standard = false;
    bool other = false;
    bool weighs = status && (status->weighs || !status->faults.isEmpty());
    const auto say = [&lines](const QString& text) {
        if (!text.isEmpty())
            lines += text;
    };
    for (const second_reading* reading : readings) {
        standard |= reading->shows_standard();
        weighs |= reading->weighs() || !reading->faults().isEmpty();
        other |= reading->weighs();
        say(reading->line());
        say(reading->fault_line());
    }
    if (status) {
        other |= status->weighs;
        say(status->line);
        say(status->faults);
    }
    const QSignalBlocker quiet(&standard_reading);
    standard_reading.setChecked(standard);
    from_now_on.setVisible(other && !standard);
    standard_reading.setVisible(!other || standard);
    line.setText(lines.join(u'\n'));
    stand_out(weighs);
    setVisible(!lines.isEmpty());
}

void reading_bar::stand_out(bool above) {
    theme::mark(line, "role", above ? QString() : QStringLiteral("muted"));
    theme::mark(*this, "weighs", above);
    const int at = column.indexOf(this);
    const bool is_above = at < column.indexOf(&cards);
    if (above == is_above)
        return;
    column.removeWidget(this);
    column.insertWidget(column.indexOf(&cards) + (above ? 0 : 1), this);
}

} // namespace brivant
