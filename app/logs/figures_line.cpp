#include "app/logs/figures_line.h"

#include "base/work_a_moment.h"
#include "formats/figures_text.h"

namespace brivant {

namespace {

constexpr int lines_at_once = 100;

} // namespace

figures_line::figures_line(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    connect(&reading, &QTimer::timeout, this, &figures_line::read_slice);
    hide();
}

void figures_line::show_log(program_core& core, const std::optional<log_header>& log) {
    reading.stop();
    run.reset();
    hide();
    if (!log)
        return;
    run.emplace(core.toolies, *log);
    reading.start(0);
}

void figures_line::read_slice() {
    if (work_a_moment([this] { return run->step(lines_at_once); }))
        return;
    reading.stop();
    if (!run->figures())
        return;
    QStringList known;
    for (const figure_text& one : figures_of_drive(*run->figures())) {
        if (one.is_known) // a figure is not parted from its name by the end of a line
            known += QStringLiteral("%1: %2").arg(one.name, one.value).replace(u' ', QChar::Nbsp);
    }
    setText(known.join(QStringLiteral("   ")));
    show();
}

} // namespace brivant
