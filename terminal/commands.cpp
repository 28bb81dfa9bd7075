#include "terminal/commands.h"

#include "base/string_table.h"
#include "terminal/command_parts.h"
#include "terminal/operation_commands.h"

#include <QJsonArray>
#include <algorithm>
#include <array>
#include <vector>

namespace brivant {

namespace {

const adapter_facts& adapter_of(const readCodes& controller) {
    return controller.link.adapter();
}

QString ecu_name(readCodes& controller, const QString& header) {
    const QString name = controller.toolies.l_pull_ECU(header);
    return name.isEmpty() ? header : name;
}

// --- link-info ----------------------------------------------------------------------------------------

QJsonObject link_info_json(readCodes& controller) {
    QJsonArray ecus;
    for (const obd_group& ecu : controller.state.available_pids())
        ecus += QJsonObject{{"header", ecu.header},
                            {"name", ecu_name(controller, ecu.header)},
                            {"pids", QJsonArray::fromStringList(ecu.pidSet)}};
    return {{"interface", adapter_of(controller).interface_description()},
            {"protocol", adapter_of(controller).protocol_description()},
            {"ecus", ecus}};
}

QString link_info_text(readCodes& controller) {
    QString text = QStringLiteral("Interface: %1\nProtocol: %2\n")
                       .arg(adapter_of(controller).interface_description(),
                            adapter_of(controller).protocol_description());
    for (const obd_group& ecu : controller.state.available_pids())
        text += QStringLiteral("ECU %1 (%2), %3 PIDs: %4\n")
                    .arg(ecu.header, ecu_name(controller, ecu.header))
                    .arg(ecu.pidSet.size())
                    .arg(ecu.pidSet.join(QLatin1Char(' ')));
    return text;
}

// --- read-codes ---------------------------------------------------------------------------------------

QJsonObject read_codes_json(readCodes& controller) {
    const diagnostic_results& results = controller.results;
    QJsonObject object{{"interface", adapter_of(controller).interface_description()},
                       {"protocol", adapter_of(controller).protocol_description()},
                       {"ecus", results.no_of_ecus},
                       {"mil", results.milLamp},
                       {"expected_codes", results.no_of_codes},
                       {"codes", codes_as_json(controller, results.rows(part::codes))},
                       {"readiness", readiness_as_json(results.readinessFlagsArray)}};
    if (results.answers.contains(part::permanent)) {
        const QJsonObject permanent = permanent_json(controller);
        for (auto part = permanent.begin(); part != permanent.end(); ++part)
            object.insert(part.key(), part.value());
    }
    const second_reading codes = both_readings(controller, part::codes);
    const second_status status = both_statuses(controller);
    QJsonObject standard{{"codes", codes_as_json(controller, plain(codes.standard_rows()))}};
    if (status.standard.is_known) {
        standard.insert("mil", status.standard.mil);
        standard.insert("expected_codes", status.standard.codes);
        standard.insert("readiness", readiness_as_json(status.standard.monitors));
    }
    object = with_standard(object, standard, {codes});
    if (status.differs)
        object.insert("differs", true);
    return object;
}

QString read_codes_text(readCodes& controller) {
    const diagnostic_results& results = controller.results;
    const second_status status = both_statuses(controller);
    QString text =
        results.xtraInfoArray.join(QLatin1Char('\n')) + u'\n' + status_as_text(controller, status) + u'\n';
    const second_reading codes = both_readings(controller, part::codes);
    text += codes_as_text(controller, plain(codes.shown())) + line_as_text(codes);
    if (!status.shown().monitors.isEmpty())
        text += QStringLiteral("\nReadiness:\n");
    for (const readiness_row& row : status.shown().monitors)
        text += QStringLiteral("%1  %2 (%3)\n").arg(row.state, -4).arg(row.label, row.group);
    if (results.answers.contains(part::permanent))
        text += u'\n' + permanent_text(controller);
    return text;
}

// --- clear-codes --------------------------------------------------------------------------------------

QJsonObject clear_codes_json(readCodes& controller) {
    return {{"interface", adapter_of(controller).interface_description()},
            {"protocol", adapter_of(controller).protocol_description()}};
}

QString clear_codes_text(readCodes&) {
    return QStringLiteral("Codes cleared\n");
}

// clang-format off
constexpr std::array<cli_command, 3> first_commands{{
    {"link-info",   "which adapter, protocol and ECUs answer, and their supported PIDs",
     [](readCodes& c) { c.read_link_info(); }, link_info_json,   link_info_text},
    {"read-codes",  "trouble codes, MIL and readiness of the monitors",
     [](readCodes& c) { c.l_readCodes(); },    read_codes_json,  read_codes_text},
    {"clear-codes", "clears the trouble codes (with --yes)",
     [](readCodes& c) { c.start_clearing(); }, clear_codes_json, clear_codes_text},
}};
// clang-format on

} // namespace

QJsonArray codes_as_json(readCodes& controller, const QList<result_row>& rows) {
    QJsonArray codes;
    for (const code_row& row : rows_of<code_row>(rows))
        codes += QJsonObject{{"code", row.code},
                             {"ecu", row.ecu},
                             {"description", controller.description_of(row.code).trimmed()}};
    return codes;
}

QString codes_as_text(readCodes& controller, const QList<result_row>& rows) {
    const QList<code_row> codes = rows_of<code_row>(rows);
    if (codes.isEmpty())
        return (rows.isEmpty() ? localised(QStringLiteral("NO_CODES"))
                               : row_text(part::codes, rows.first())) +
               QLatin1Char('\n');
    QString text;
    for (const code_row& row : codes)
        text += QStringLiteral("%1  %2  %3\n")
                    .arg(row.code, row.ecu, controller.description_of(row.code).trimmed());
    return text;
}

std::span<const cli_command> cli_commands() {
    static const std::vector<cli_command> all = [] {
        std::vector<cli_command> commands(first_commands.begin(), first_commands.end());
        const auto more = operation_commands();
        commands.insert(commands.end(), more.begin(), more.end());
        return commands;
    }();
    return all;
}

const cli_command* find_command(const QString& name) {
    const auto commands = cli_commands();
    const auto found = std::find_if(commands.begin(), commands.end(), [&](const cli_command& command) {
        return QLatin1String(command.name) == name;
    });
    return found == commands.end() ? nullptr : &*found;
}

} // namespace brivant
