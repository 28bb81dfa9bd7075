#pragma once

#include "operations/car_talk.h"

namespace brivant {

// What a fast run and the probe before it send.

// Ends the wait behind an answer as the adapter does at first.
inline const QString usual_wait = QStringLiteral("AT AT1");

bool is_j1850(int protocol);

// The address of the requests to one ECU: of "7E8" "7E0", of "18DAF110" "DA10F1" (ISO 15765-4); "" for
// another header. And that of the requests to all of them.
QString address_of(const QString& ecu);
QString address_of_all(const QString& ecu);

// A request for PIDs, sent once; behind so many frames the adapter need not wait, 0: as long as it is set to.
// One that it falls silent at costs a second.
sent_command fast_request(const QStringList& pids, int frames);

// Changes a setting of the adapter, and notes with the link what undoes it.
car_talk::asking change_setting(car_talk& car, const QString& command, const QString& undo);

} // namespace brivant
