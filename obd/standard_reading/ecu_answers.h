#pragma once

#include "base/shared_types.h"

#include <QByteArray>

namespace brivant {

// The bytes that each ECU sent, taken from the adapter's text by ISO 15765-2 (CAN), ISO 14230-2 (KWP) and
// SAE J1979 (the older protocols). Nothing is guessed: what is not whole carries its fault.

// One message, its frames joined.
struct ecu_message {
    QString ecu;     // the header as the adapter shows it, "" when headers are off
    QByteArray data; // from the service byte on
    QString fault;   // why the data is not whole, "" when it is
};

// The messages of a reply in the order in which they began, those of any service. Adapter words
// ("SEARCHING...", "BUS INIT: OK", "NO DATA") are left out; a line that the adapter marks as damaged is a
// message with a fault, and so is the rest of an answer that it broke off. The check byte of the older
// protocols is left to the adapter, which marks a wrong one. Replies of SAE J1939 (10) hold no messages of
// this kind.
QList<ecu_message> ecu_messages(const raw_reply& reply);

// What one ECU answered to a service.
struct ecu_answer {
    QString ecu;                // as ecu_identity() gives it
    QList<QByteArray> messages; // each from the response's service byte on, the same one never twice
    QString fault;              // a refusal or a damaged answer, in words; "" when all is well
};

// The answers to a service (01 to 0A) by ECU, in order of arrival. Messages of other services, which belong
// to earlier requests, and "response pending" are left out.
QList<ecu_answer> answers_to(int service, const raw_reply& reply);

// True for protocols 6 to 12.
bool is_iso_15765(int protocol);
// The part of a header that stays the same from message to message of one ECU: on ISO 14230 (4 and 5) the
// first byte holds the message's length in its low six bits. "86F110" and "83F110" give the same text.
QString ecu_identity(const QString& header, int protocol);

} // namespace brivant
