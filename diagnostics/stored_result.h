#pragma once

#include "diagnostics/diagnostic_results.h"
#include "persistence/stored_replies.h"

namespace brivant {

class mac_toolies;

// The replies that stand behind the report of an operation, in the order of the parts and of the requests.
QList<stored_reply> replies_behind(int operation_code, const diagnostic_results& results);

// What the replies of a stored report hold by SAE J1979, as a report of its own. `log_type`: the stored title
// of the report. Empty for a log of another kind, and without replies.
QString standard_text(const QString& log_type, const QList<stored_reply>& replies,
                      const mac_toolies& toolies);

} // namespace brivant
