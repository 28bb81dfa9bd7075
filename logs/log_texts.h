#pragma once

#include "persistence/stored_logs.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// Stored logs as texts. They may come from a database that somebody sent: what stands in them is never taken
// for HTML, but for the one tag that the reports themselves hold, and a text is cut after 512 Ki characters,
// with a line that says so.

// A run of samples, which can be plotted and exported; all others are diagnostic reports.
bool isSampledLog(const QString& log_type);

// The chunks of a log as database::pull_rawData_fromDB gives them with line feeds, without its leading "-1".
QString stored_text(database& db, int log_id);
// What stands below the text of a stored report: what its stored replies hold by SAE J1979, for trouble codes
// always, for others while that reading is the shown one. "" for nothing.
QString standard_part_of(mac_toolies& toolies, const log_header& log);
// Both for the pop-up of View, as HTML.
QString viewLog(mac_toolies& toolies, const log_header& log);
// What stands in the pop-up in the place of an export of a diagnostic report, as HTML: description and first
// chunk.
QString report_html(database& db, const log_header& log);
// The plain text in a stored text, for copying and printing.
QString without_tags(QString text);

// What stands below the list for a selected log: the text of a report, or the first samples of a run with
// names and units, as columns of equal width, and which of them the other reading tells otherwise.
QString preview_of(mac_toolies& toolies, const log_header& log);

} // namespace brivant
