#pragma once

#include "base/shared_types.h"

namespace brivant {

class text_resources;

// The readiness monitors from the reply to mode 01 PID 01 (SAE J1979).

struct readiness_row {
    QString state; // "OK" supported and complete, "X" supported and not complete, "N/A" not supported
    QString label;
    QString group; // "Continous" or "Non-Continous"
    bool operator==(const readiness_row&) const = default;
};

// `flags`: the status bytes B, C and D as six hex characters; when one is missing no monitor counts as
// supported. Three continuous and eight non-continuous monitors in bit order; the labels are "" when their
// list is missing.
QList<readiness_row> handle_readiness_codes(const QString& flags, const text_resources& lists);

// How many of the supported monitors are complete, as HTML.
QString readiness_summary(const QList<readiness_row>& rows);

} // namespace brivant
