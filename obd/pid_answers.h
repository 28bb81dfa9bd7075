#pragma once

#include "obd/reply.h"

#include <QMap>

namespace brivant {

// The answers to a request for several PIDs of service 01, which only CAN carries (ISO 15765-4): one message
// an ECU, "41", then each PID and its data, in any order.

// The whole messages among what an ECU said on CAN, without their control bytes, each as long as it says that
// it is. A late frame of an earlier message is none, and two long ones at once cannot be told apart.
QStringList whole_messages(const ecu_said& said);

// What each PID ("0C") answers, as the answer to a request for it alone ("410C1AF8"). Only PIDs that were
// asked for and have one length can be told apart; nothing when anything else stands in the message, a PID
// stands twice, or data are short.
std::optional<QMap<QString, QString>> answers_in(const QString& message, const QStringList& asked);

} // namespace brivant
