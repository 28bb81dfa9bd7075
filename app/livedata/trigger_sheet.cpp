#include "app/livedata/trigger_sheet.h"

#include "app/look/theme.h"
#include "base/shared_types.h"

#include <QGridLayout>

namespace brivant {

namespace {

constexpr int sheet_width = 640;
constexpr int most_before_s = 600;
constexpr int longest_typed = 16;

} // namespace

trigger_sheet::trigger_sheet(QWidget& asked_by, brivant::actions& its_controller)
    : card_sheet(asked_by, QStringLiteral("Store when a value is crossed"), sheet_width),
      controller(its_controller) {
    setObjectName(QStringLiteral("trigger_sheet"));
    add_text(QStringLiteral("A run is stored from that moment on. Each further crossing begins a log of its "
                            "own."),
             "muted");
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(theme::step);
    grid->setVerticalSpacing(theme::step);
    grid->setColumnStretch(1, 1);
    content()->addLayout(grid);
    when = add_limit(*grid, 0, QStringLiteral("Begin when"), "when");
    add_before(*grid);
    add_until(*grid);
    problem = add_text(QString(), "small");
    theme::mark(*problem, "warning", true);
    if (const auto& trigger = controller.results.trigger) {
        show_limit(when, trigger->when);
        before->setText(QString::number(trigger->before_s));
        ends->setChecked(trigger->until.has_value());
        if (trigger->until)
            show_limit(until, *trigger->until);
    }
    connect(add_button(QStringLiteral("Set"), "trigger_set", true), &QPushButton::clicked, this,
            &trigger_sheet::set);
    auto* none = add_button(QStringLiteral("No trigger"), "trigger_none", false);
    none->setEnabled(controller.results.trigger.has_value());
    connect(none, &QPushButton::clicked, this, [this] {
        controller.store_when(std::nullopt);
        Q_EMIT changed();
        close_sheet();
    });
    connect(add_button(QStringLiteral("Cancel"), "trigger_cancel", false), &QPushButton::clicked, this,
            &card_sheet::close_sheet);
}

trigger_sheet::limit_row trigger_sheet::add_limit(QGridLayout& grid, int row, const QString& what,
                                                  const char* name) {
    limit_row parts{new QComboBox, new QComboBox, new QLineEdit};
    for (const sample_row& sample : std::as_const(controller.results.these_samples)) {
        const QString unit = sample.units == not_available ? QString() : sample.units.trimmed();
        parts.pid->addItem(unit.isEmpty() ? sample.name : QStringLiteral("%1 (%2)").arg(sample.name, unit),
                           sample.pid);
    }
    parts.way->addItems({QStringLiteral("rises above"), QStringLiteral("falls below")});
    parts.value->setMaxLength(longest_typed);
    const auto call = [&](QWidget* part, const char* which, const QString& accessible) {
        part->setObjectName(QStringLiteral("trigger_%1_%2").arg(QLatin1String(name), QLatin1String(which)));
        part->setAccessibleName(what + u' ' + accessible);
    };
    call(parts.pid, "pid", QStringLiteral("this value"));
    call(parts.way, "way", QStringLiteral("above or below"));
    call(parts.value, "value", QStringLiteral("this number"));
    if (row == 0)
        grid.addWidget(new QLabel(what), row, 0);
    grid.addWidget(parts.pid, row, 1);
    grid.addWidget(parts.way, row, 2);
    grid.addWidget(parts.value, row, 3);
    return parts;
}

void trigger_sheet::add_before(QGridLayout& grid) {
    before = new QLineEdit(QStringLiteral("5"));
    before->setObjectName(QStringLiteral("trigger_before"));
    before->setAccessibleName(QStringLiteral("Seconds before it that are stored, too"));
    before->setMaxLength(3);
    grid.addWidget(new QLabel(QStringLiteral("With the seconds before")), 1, 0, 1, 3);
    grid.addWidget(before, 1, 3);
}

void trigger_sheet::add_until(QGridLayout& grid) {
    ends = new QCheckBox(QStringLiteral("End when"));
    ends->setObjectName(QStringLiteral("trigger_ends"));
    grid.addWidget(ends, 2, 0);
    until = add_limit(grid, 2, QStringLiteral("End when"), "until");
    until.way->setCurrentIndex(1);
    for (QWidget* part : {static_cast<QWidget*>(until.pid), static_cast<QWidget*>(until.way),
                          static_cast<QWidget*>(until.value)}) {
        part->setEnabled(false);
        connect(ends, &QCheckBox::toggled, part, &QWidget::setEnabled);
    }
}

void trigger_sheet::show_limit(const limit_row& row, const pid_limit& limit) {
    row.pid->setCurrentIndex(std::max(0, row.pid->findData(limit.pid)));
    row.way->setCurrentIndex(limit.is_above ? 0 : 1);
    row.value->setText(QString::number(limit.value, 'g', 12));
}

std::optional<pid_limit> trigger_sheet::limit_of(const limit_row& row) {
    const auto limit = pid_limit_of(row.pid->currentData().toString() +
                                    (row.way->currentIndex() == 0 ? u'>' : u'<') + row.value->text());
    if (!limit)
        refuse(*row.value, QStringLiteral("A number is needed, for example 4000 or 12.5."));
    return limit;
}

void trigger_sheet::set() {
    store_trigger trigger;
    const auto begin = limit_of(when);
    if (!begin)
        return;
    trigger.when = *begin;
    bool is_number = false;
    trigger.before_s = before->text().trimmed().toInt(&is_number);
    if (!is_number || trigger.before_s < 0 || trigger.before_s > most_before_s)
        return refuse(*before,
                      QStringLiteral("The seconds before are a number from 0 to %1.").arg(most_before_s));
    if (ends->isChecked() && !(trigger.until = limit_of(until)))
        return;
    controller.store_when(trigger);
    Q_EMIT changed();
    close_sheet();
}

void trigger_sheet::refuse(QWidget& where, const QString& sentence) {
    problem->setText(sentence);
    where.setFocus(Qt::OtherFocusReason);
}

} // namespace brivant
