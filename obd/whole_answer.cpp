#include "obd/whole_answer.h"

#include "obd/number_text.h"
#include "obd/reply.h"
#include "obd/reply_text.h"

qsizetype digits_received(const QStringList& bodies) {
    return ecu_said{{}, bodies, 6, {}}.digits_received();
}

bool is_whole_can_answer(const QStringList& bodies) {
    return !bodies.isEmpty() && ecu_said{{}, bodies, 6, {}}.is_whole();
}

QString whole_data_without_headers(const QString& reply, const QString& answer) {
    return ::reply({reply}).data_without_headers(answer);
}
