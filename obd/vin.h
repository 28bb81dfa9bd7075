#pragma once

#include <QString>

namespace brivant {

class reply;

// The vehicle identification number from the reply to "09 02" (SAE J1979 service 09, info type 02). At most
// 39 characters; "N/A" when the reply holds no readable one (refused, no data, never programmed).

// That of the engine's ECU, else of the first that tells one, from an answer that is whole.
QString vin_of(const reply& answer);
// Headers off: on CAN a byte count and lines "0:...", "1:...", on the older protocols one line for four
// characters.
QString work_out_vin(const QString& reply);

// The bytes that the hex text holds as characters, at most 39. Bytes 00 are left out, and so are pairs that
// are no hex digits.
QString pullAsciiStr(QStringView hex);

} // namespace brivant
