#include "terminal/commands.h"

#include "base/string_table.h"

#include <QJsonArray>
#include <algorithm>
#include <array>

namespace {

const process_state& state_of(readCodes& controller) {
    return controller.what_it_works_with().state;
}

QString ecu_name(readCodes& controller, const QString& header) {
    const QString name = controller.what_it_works_with().toolies.l_pull_ECU(header);
    return name.isEmpty() ? header : name;
}

// --- link-info -----------------------------------------------------------------------------------------------

QJsonObject link_info_json(readCodes& controller) {
    QJsonArray ecus;
    for (const obd_group& ecu : state_of(controller).available_pids)
        ecus += QJsonObject{{"header", ecu.header},
                            {"name", ecu_name(controller, ecu.header)},
                            {"pids", QJsonArray::fromStringList(ecu.pidSet)}};
    return {{"interface", state_of(controller).interface_description},
            {"protocol", state_of(controller).protocol_description},
            {"ecus", ecus}};
}

QString link_info_text(readCodes& controller) {
    QString text = QStringLiteral("Interface: %1\nProtocol: %2\n")
                       .arg(state_of(controller).interface_description, state_of(controller).protocol_description);
    for (const obd_group& ecu : state_of(controller).available_pids)
        text += QStringLiteral("ECU %1 (%2), %3 PIDs: %4\n")
                    .arg(ecu.header, ecu_name(controller, ecu.header))
                    .arg(ecu.pidSet.size())
                    .arg(ecu.pidSet.join(QLatin1Char(' ')));
    return text;
}

// --- read-codes ----------------------------------------------------------------------------------------------

struct code_row {
    QString code;
    QString ecu;
    QString description;
};

// The rows that name a code; the one that says that there is none is left out.
QList<code_row> code_rows(readCodes& controller) {
    QList<code_row> rows;
    for (const QString& row : controller.results().codesReadArray) {
        const qsizetype bar = row.indexOf(QLatin1Char('|'));
        if (bar > 0)
            rows += {row.first(bar), row.sliced(bar + 1), controller.description_of(row.first(bar)).trimmed()};
    }
    return rows;
}

QJsonObject read_codes_json(readCodes& controller) {
    const diagnostic_results& results = controller.results();
    QJsonArray codes;
    for (const code_row& row : code_rows(controller))
        codes += QJsonObject{{"code", row.code}, {"ecu", row.ecu}, {"description", row.description}};
    QJsonArray readiness;
    for (const readiness_row& row : results.readinessFlagsArray)
        readiness += QJsonObject{{"state", row.state}, {"label", row.label}, {"group", row.group}};
    return {{"interface", state_of(controller).interface_description},
            {"protocol", state_of(controller).protocol_description},
            {"ecus", results.no_of_ecus},
            {"mil", results.milLamp},
            {"expected_codes", results.no_of_codes},
            {"codes", codes},
            {"readiness", readiness}};
}

QString read_codes_text(readCodes& controller) {
    const diagnostic_results& results = controller.results();
    QString text = results.xtraInfoArray.join(QLatin1Char('\n')) +
                   QStringLiteral("\nMIL: %1\nCodes announced: %2\n\n").arg(results.mil_label, results.code_count_label);
    const QList<code_row> rows = code_rows(controller);
    if (rows.isEmpty())
        text += localised(QStringLiteral("NO_CODES")) + QLatin1Char('\n');
    for (const code_row& row : rows)
        text += QStringLiteral("%1  %2  %3\n").arg(row.code, row.ecu, row.description);
    if (!results.readinessFlagsArray.isEmpty())
        text += QStringLiteral("\nReadiness:\n");
    for (const readiness_row& row : results.readinessFlagsArray)
        text += QStringLiteral("%1  %2 (%3)\n").arg(row.state, -4).arg(row.label, row.group);
    return text;
}

// --- clear-codes ---------------------------------------------------------------------------------------------

QJsonObject clear_codes_json(readCodes& controller) {
    return {{"interface", state_of(controller).interface_description},
            {"protocol", state_of(controller).protocol_description}};
}

QString clear_codes_text(readCodes&) {
    return QStringLiteral("Codes cleared\n");
}

// clang-format off
constexpr std::array<cli_command, 3> commands{{
    {"link-info",   "which adapter, protocol and ECUs answer, and their supported PIDs",
     [](readCodes& c) { c.read_link_info(); }, link_info_json,   link_info_text},
    {"read-codes",  "trouble codes, MIL and readiness of the monitors",
     [](readCodes& c) { c.l_readCodes(); },    read_codes_json,  read_codes_text},
    {"clear-codes", "clears the trouble codes (with --yes)",
     [](readCodes& c) { c.start_clearing(); }, clear_codes_json, clear_codes_text},
}};
// clang-format on

} // namespace

std::span<const cli_command> cli_commands() {
    return commands;
}

const cli_command* find_command(const QString& name) {
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const cli_command& command) { return QLatin1String(command.name) == name; });
    return found == commands.end() ? nullptr : &*found;
}
