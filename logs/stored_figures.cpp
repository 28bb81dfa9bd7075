#include "logs/stored_figures.h"

namespace brivant {

stored_figures::stored_figures(mac_toolies& toolies, const log_header& log)
    : file(toolies.store().path()), run(toolies.store(), log, toolies.lists(), toolies.shown_reading()) {
    begin_reading();
}

void stored_figures::begin_reading() {
    lines_left.reset();
    lines_left.emplace(file, run.statement());
}

// Twice: the columns are known before the first value counts.
bool stored_figures::step(int lines) {
    for (int i = 0; lines_left && i < lines; ++i) {
        const auto row = lines_left->next();
        if (lines_left->has_failed()) {
            what_is_wrong = QStringLiteral("The log cannot be read: %1.").arg(lines_left->reason());
            gathered.reset();
            lines_left.reset();
        } else if (!gathered && (!row || run.tell_columns(*row))) {
            gathered.emplace(run.head(QString()));
            begin_reading();
        } else if (!row) {
            lines_left.reset();
        } else if (gathered) {
            gathered->add(run.sweep_of(*row));
        }
    }
    return lines_left.has_value();
}

} // namespace brivant
