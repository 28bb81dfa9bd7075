#include "app/links/check_sheet.h"

#include "app/look/tables.h"
#include "app/look/theme.h"

#include <QHeaderView>

namespace brivant {

namespace {

constexpr int card_width = 880;
constexpr int list_height = 340;
constexpr int least_list_height = 150;
constexpr int row_height = 30;

QString word_of(check_row::grade how) {
    switch (how) {
    case check_row::grade::good: return QStringLiteral("good");
    case check_row::grade::amber: return QStringLiteral("fair");
    case check_row::grade::red: return QStringLiteral("bad");
    default: return QStringLiteral("not tested");
    }
}

} // namespace

check_sheet::check_sheet(QWidget& asked_by, program_core& its_core, Bv_lite_delegate& its_delegate,
                         std::function<task_controller*()> back_to)
    : card_sheet(asked_by, QStringLiteral("Adapter check"), card_width), core(its_core),
      delegate(its_delegate), give_link_back(std::move(back_to)), facts(new QTableWidget(0, 3)),
      progress(new busy_bar),
      check(core.car, delegate.link, core.toolies, *this, core.defaults, core.clock, core.paths) {
    setObjectName(QStringLiteral("check_sheet"));
    verdict = add_text(QString(), "strong");
    verdict->setObjectName(QStringLiteral("check_verdict"));
    verdict->setTextInteractionFlags(Qt::TextSelectableByMouse);
    facts->setObjectName(QStringLiteral("check_facts"));
    facts->setAccessibleName(QStringLiteral("What was found out"));
    facts->horizontalHeader()->hide();
    facts->verticalHeader()->hide();
    facts->setShowGrid(false);
    let_rows_wrap(*facts, 2, row_height);
    facts->setMinimumHeight(least_list_height);
    facts->setMaximumHeight(list_height);
    content()->addWidget(facts);
    content()->addWidget(progress);
    said = add_text(QString(), "muted");
    said->setMinimumHeight(said->fontMetrics().lineSpacing() * 2); // so that nothing jumps
    said->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    again = add_button(QStringLiteral("Check again"), "check_again", false);
    done = add_button(QStringLiteral("Close"), "check_close", true);
    connect(again, &QPushButton::clicked, this, &check_sheet::check_or_stop);
    connect(done, &QPushButton::clicked, this, &card_sheet::close_sheet);
    connect(this, &card_sheet::closed, this, &check_sheet::give_back);
    check.changed = [this] { show_findings(); };
    check.operation_ended = [this](bool) { show_findings(); };
}

void check_sheet::open_and_check() {
    delegate.link.set_controller(&check); // what ran is left
    check_or_stop();
    open(*again);
}

void check_sheet::check_or_stop() {
    if (check.is_running())
        check.stop();
    else
        check.start();
    show_findings();
}

void check_sheet::give_back() {
    if (const auto back = std::exchange(give_link_back, nullptr)) {
        check.changed = nullptr;
        check.operation_ended = nullptr;
        delegate.link.set_controller(back());
    }
}

void check_sheet::show_findings() {
    const QList<check_row> rows = check.rows();
    const bool runs = check.is_running();
    facts->setRowCount(static_cast<int>(rows.size()));
    for (int at = 0; at < rows.size(); ++at) {
        const QString texts[] = {word_of(rows.at(at).how), rows.at(at).title, rows.at(at).words};
        for (int cell = 0; cell < 3; ++cell) {
            if (!facts->item(at, cell))
                facts->setItem(at, cell, new QTableWidgetItem);
            facts->item(at, cell)->setText(texts[cell]);
        }
    }
    verdict->setText(runs ? QStringLiteral("The adapter is checked: about a minute") : check.verdict().words);
    if (!runs)
        said->clear();
    progress->set_running(runs);
    progress->set_progress(check.progress(), 100);
    again->setText(runs ? QStringLiteral("Stop") : QStringLiteral("Check again"));
}

} // namespace brivant
