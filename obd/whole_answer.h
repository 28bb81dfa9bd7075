#pragma once

#include "base/shared_types.h"

// Whether an answer has arrived whole. What is lost on the way is filled up or closed up by the decoders, and
// would read as something that the car never said.

// The bodies of one ECU's answer on CAN, in order (ISO 15765-2): a single frame has the bytes that its first
// byte announces; a long answer has every frame in sequence, each full but the last.
bool is_whole_can_answer(const QStringList& bodies);
// How many digits of an answer of several frames have come behind its length, up to the first that is
// missing.
qsizetype digits_received(const QStringList& bodies);
// The data in a reply without headers that begin with `answer` ("4105"): the first such line of whole bytes,
// or the frames of a long answer joined. "" when there is none, or not all of it.
QString whole_data_without_headers(const QString& reply, const QString& answer);
