#pragma once

#include <QString>

namespace brivant {

// Why an ECU refuses a request, by the last byte of its negative response (ISO 14229-1, ISO 14230-3):
// "conditions not right". A code that the standards do not name gives "code 9A".
QString refusal_words(int code);

} // namespace brivant
