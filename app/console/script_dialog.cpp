#include "app/console/script_dialog.h"

#include "app/look/theme.h"
#include "expert/expert_commands.h"

#include <QFontDatabase>
#include <QGridLayout>

namespace brivant {

namespace {

constexpr int card_width = 520;
constexpr int longest_value = 250;
constexpr int narrow_field = 120;
constexpr int bytes_and_loops = 1; // the fields from here on are short

struct field_row {
    const char* name;
    const char* label;
};

constexpr std::array<field_row, 4> field_rows{{
    {"script_template", "Template:"},
    {"script_from", "{L} From:"},
    {"script_to", "To:"},
    {"script_loops", "No of Loops:"},
}};

} // namespace

script_dialog::script_dialog(QWidget& asked_by, const QStringList& prevVals)
    : card_sheet(asked_by, QStringLiteral("OBD Expert script"), card_width) {
    add_text(QStringLiteral("Enter a valid OBD cmd, {L} can be looped  \ne.g. 01 {L}"), "muted");
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2 * theme::step);
    grid->setVerticalSpacing(theme::step / 2);
    grid->setColumnStretch(1, 1);
    for (size_t i = 0; i < fields.size(); ++i) {
        const int row = static_cast<int>(2 * i);
        auto* label = new QLabel(QLatin1String(field_rows[i].label));
        auto* field = new QLineEdit(prevVals.value(static_cast<qsizetype>(i)));
        auto* problem = new QLabel;
        field->setObjectName(QLatin1String(field_rows[i].name));
        field->setAccessibleName(QLatin1String(field_rows[i].label));
        field->setMaxLength(longest_value);
        field->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        if (i >= bytes_and_loops)
            field->setMaximumWidth(narrow_field);
        label->setBuddy(field);
        problem->setProperty("role", QStringLiteral("problem"));
        problem->setTextFormat(Qt::PlainText);
        problem->setWordWrap(true);
        problem->hide();
        grid->addWidget(label, row, 0);
        grid->addWidget(field, row, 1);
        grid->addWidget(problem, row + 1, 1);
        fields[i] = field;
        problem_labels[i] = problem;
        connect(field, &QLineEdit::textChanged, this, &script_dialog::check);
        connect(field, &QLineEdit::returnPressed, this, &script_dialog::click_ok);
    }
    content()->addLayout(grid);
    auto* ok = add_button(QStringLiteral("OK"), "script_ok", true);
    auto* cancel = add_button(QStringLiteral("Cancel"), "script_cancel", false);
    connect(cancel, &QPushButton::clicked, this, &card_sheet::close_sheet);
    connect(ok, &QPushButton::clicked, this, &script_dialog::click_ok);
}

QStringList script_dialog::values() const {
    QStringList texts;
    for (const QLineEdit* field : fields)
        texts += field->text().trimmed();
    return texts;
}

void script_dialog::check() {
    QStringList problems;
    check_script(values(), problems);
    for (size_t i = 0; i < fields.size(); ++i) {
        const QString& problem = problems.at(static_cast<qsizetype>(i));
        problem_labels[i]->setText(problem);
        problem_labels[i]->setVisible(!problem.isEmpty());
        fields[i]->setAccessibleDescription(problem);
    }
}

void script_dialog::click_ok() {
    QStringList problems;
    if (!check_script(values(), problems)) {
        check();
        for (size_t i = 0; i < fields.size(); ++i) {
            if (!problems.at(static_cast<qsizetype>(i)).isEmpty())
                return fields[i]->setFocus(); // the first that is wrong
        }
    }
    const QStringList good = values();
    close_sheet();
    Q_EMIT accepted(good);
}

} // namespace brivant
