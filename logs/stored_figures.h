#pragma once

#include "formats/drive_figures.h"
#include "persistence/row_cursor.h"
#include "persistence/stored_run.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// The figures of a stored run, read a slice of its lines at a time; stopped by letting this go.
class stored_figures {
public:
    // Outlives it. The reading is the one that is shown now.
    stored_figures(mac_toolies& toolies, const log_header& log);

    // Reads up to `lines` further lines. True while there are more.
    bool step(int lines);
    // Behind the last step; nothing of a log that cannot be read: see problem().
    const std::optional<drive_figures>& figures() const { return gathered; }
    // A sentence for the person, "" while nothing is wrong.
    const QString& problem() const { return what_is_wrong; }

private:
    void begin_reading();

    const QString file;
    stored_run run;
    std::optional<row_cursor> lines_left;
    std::optional<drive_figures> gathered; // as soon as the columns are known
    QString what_is_wrong;
};

} // namespace brivant
