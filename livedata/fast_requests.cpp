#include "livedata/fast_requests.h"

#include "obd/reply_text.h"

namespace brivant {

bool is_j1850(int protocol) {
    return protocol == 1 || protocol == 2;
}

QString address_of(const QString& ecu) {
    if (ecu.size() == 3 && ecu.startsWith(QLatin1String("7E")) && charToNibble(ecu[2]) >= 8)
        return QStringLiteral("7E") + QString::number(charToNibble(ecu[2]) - 8);
    if (ecu.size() == 8 && ecu.startsWith(QLatin1String("18DAF1")))
        return QStringLiteral("DA%1F1").arg(ecu.last(2));
    return {};
}

QString address_of_all(const QString& ecu) {
    return ecu.size() == 3 ? QStringLiteral("7DF") : QStringLiteral("DB33F1");
}

sent_command fast_request(const QStringList& pids, int frames) {
    QStringList answers;
    for (const QString& pid : pids)
        answers += QStringLiteral("41") + pid;
    return {.text = QStringLiteral("01") + pids.join(QString()) +
                    (frames > 0 ? QString::number(frames, 16).toUpper() : QString()) + u'\r',
            .expectedReply = answers.join(u'|'),
            .seconds = 1,
            .is_asked_again = false,
            .is_sent_once = true,
            .is_a_trial = true,
            .why = sent_command::purpose::on_its_own};
}

car_talk::asking change_setting(car_talk& car, const QString& command, const QString& undo) {
    car.link.changes_setting(undo);
    sent_command setting = command_of(command + u'\r', QStringLiteral("OK"), false);
    setting.why = sent_command::purpose::on_its_own;
    setting.is_asked_again = false;
    setting.is_sent_once = setting.is_a_trial = true;
    return car.send(setting);
}

} // namespace brivant
