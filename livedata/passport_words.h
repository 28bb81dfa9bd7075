#pragma once

#include "livedata/adapter_passport.h"

#include <QJsonObject>

namespace brivant {

// A passport for the person: what the adapter is by what it does, what it can and cannot do, how many values
// a second it reached, and what limits it. A sentence each.
QStringList sentences_of(const adapter_passport& passport);
// The last of them; "" where it is not known.
QString limit_sentence(const adapter_passport& passport);
// The shortest of it: "does all that was tried, 61 values/s".
QString brief_words(const adapter_passport& passport);
// The same for a script, each fact by its name.
QJsonObject json_of(const adapter_passport& passport);

} // namespace brivant
