#include "diagnostics/permanent_codes.h"
#include "terminal/command_parts.h"

#include <algorithm>

namespace brivant {

namespace {

QString with_lines(const second_reading& reading, const QString& rows) {
    const QString line = reading.line().isEmpty() ? QString() : reading.line() + u'\n';
    const QString faults = reading.fault_line().isEmpty() ? QString() : reading.fault_line() + u'\n';
    return reading.weighs() ? line + rows + faults : rows + line + faults;
}

} // namespace

second_reading both_readings(readCodes& controller, part which) {
    return {which, controller.results, controller.toolies};
}

QJsonObject both_results(const QJsonObject& own, const QJsonObject& standard,
                         const QList<second_reading>& readings) {
    QStringList faults;
    bool differs = false;
    bool is_standard = false;
    for (const second_reading& reading : readings) {
        faults += reading.faults();
        differs |= reading.differs();
        is_standard |= reading.shows_standard();
    }
    QJsonObject result = is_standard ? standard : own;
    result.insert(is_standard ? "program" : "standard", is_standard ? own : standard);
    result.insert("differs", differs);
    result.insert("reading", is_standard ? "standard" : "program");
    result.insert("faults", QJsonArray::fromStringList(faults));
    return result;
}

QString shown_as_text(const second_reading& reading, QString (*as_text)(const result_row& row)) {
    QString text;
    for (const noted_row& row : reading.shown()) {
        text += as_text(row.row);
        if (!row.note.isEmpty())
            text += QStringLiteral("    ") + row.note + u'\n';
    }
    return with_lines(reading, text);
}

QString shown_codes_as_text(readCodes& controller, const second_reading& reading) {
    return with_lines(reading, codes_as_text(controller, reading.shown()));
}

second_status both_statuses(readCodes& controller) {
    return read_status_again(controller.results, controller.toolies);
}

QString status_as_text(readCodes& controller, const second_status& status) {
    const diagnostic_results& results = controller.results;
    QString mil = results.mil_label;
    QString codes = results.code_count_label;
    if (status.was_read) {
        const car_status& shown = status.shown();
        mil = !shown.is_known ? QStringLiteral("not known")
              : shown.mil     ? QStringLiteral("ON")
                              : QStringLiteral("OFF");
        codes = shown.is_known ? QString::number(shown.codes) : QStringLiteral("not known");
    }
    QString text = QStringLiteral("MIL: %1\nCodes announced: %2\n").arg(mil, codes);
    for (const QString& line : {status.line, status.faults})
        if (!line.isEmpty())
            text += line + u'\n';
    return text;
}

QJsonArray readiness_as_json(const QList<readiness_row>& rows) {
    QJsonArray monitors;
    for (const readiness_row& row : rows)
        monitors += QJsonObject{{"state", row.state}, {"label", row.label}, {"group", row.group}};
    return monitors;
}

QJsonObject permanent_json(readCodes& controller) {
    const permanent_codes read = read_permanent_codes(controller.results, controller.toolies);
    QJsonArray monitors;
    for (const readiness_row& row : read.drive_cycle)
        monitors += QJsonObject{{"state", row.state}, {"label", row.label}};
    QJsonObject object{{"permanent", codes_as_json(controller, plain(read.rows))}, {"drive_cycle", monitors}};
    for (const QString& words : {read.words, read.drive_cycle_words})
        if (!words.isEmpty())
            object.insert(words == read.words ? "permanent_note" : "drive_cycle_note", words);
    return object;
}

QString permanent_text(readCodes& controller) {
    const permanent_codes read = read_permanent_codes(controller.results, controller.toolies);
    QString text = QStringLiteral("Permanent codes:\n");
    if (!read.rows.isEmpty())
        text += codes_as_text(controller, read.rows);
    if (!read.words.isEmpty())
        text += read.words + u'\n';
    text += QStringLiteral("\nThis drive cycle:\n");
    for (const readiness_row& row : read.drive_cycle)
        text += QStringLiteral("%1  %2\n").arg(row.state, -4).arg(row.label);
    return read.drive_cycle_words.isEmpty() ? text : text + read.drive_cycle_words + u'\n';
}

} // namespace brivant
