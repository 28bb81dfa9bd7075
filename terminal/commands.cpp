#include "terminal/commands.h"

#include "base/string_table.h"
#include "livedata/passport_words.h"
#include "obd/ecu_names.h"
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
    return name.isEmpty() ? ecu_label(header) : name;
}

// --- link-info ----------------------------------------------------------------------------------------

// What the car itself has told: what the profile holds of it is not shown as an answer.
obd_groups told_pids(const readCodes& controller) {
    return controller.state.times_told() > 0 ? controller.state.available_pids() : obd_groups();
}

// What fast runs have found out about the adapter that is led to.
std::optional<adapter_passport> passport_of(const readCodes& controller) {
    return passport_in(controller.toolies.settings().value(setting::adapter_passports),
                       controller.link.place().address());
}

QJsonObject link_info_json(readCodes& controller) {
    QJsonArray ecus;
    for (const obd_group& ecu : told_pids(controller))
        ecus += QJsonObject{{"header", ecu_label(ecu.header)},
                            {"name", ecu_name(controller, ecu.header)},
                            {"pids", QJsonArray::fromStringList(ecu.pidSet)}};
    QJsonObject object{{"interface", adapter_of(controller).interface_description()},
                       {"protocol", adapter_of(controller).protocol_description()},
                       {"ecus", ecus}};
    QJsonObject start;
    for (const start_steps::row& step : controller.link.start().rows())
        start.insert(name_of(step.what).toLower() + "_ms", step.milliseconds);
    object.insert("start", start);
    if (const auto passport = passport_of(controller))
        object.insert("passport", json_of(*passport));
    return object;
}

QString link_info_text(readCodes& controller) {
    QString text = QStringLiteral("Interface: %1\nProtocol: %2\n")
                       .arg(adapter_of(controller).interface_description(),
                            adapter_of(controller).protocol_description());
    for (const obd_group& ecu : told_pids(controller))
        text += QStringLiteral("ECU %1 (%2), %3 PIDs: %4\n")
                    .arg(ecu_label(ecu.header), ecu_name(controller, ecu.header),
                         QString::number(ecu.pidSet.size()), ecu.pidSet.join(QLatin1Char(' ')));
    text += QStringLiteral("Start: %1\n").arg(controller.link.start().sentence());
    if (const auto passport = passport_of(controller))
        text += sentences_of(*passport).join(u'\n') + u'\n';
    return text;
}

// --- read-codes ---------------------------------------------------------------------------------------

QJsonObject codes_and_status(readCodes& controller, const car_status& status, const QList<noted_row>& rows) {
    const auto known = [&](const QJsonValue& value) { return status.is_known ? value : QJsonValue(); };
    return {{"mil", known(status.mil)},
            {"expected_codes", known(status.codes)},
            {"codes", codes_as_json(controller, plain(rows))},
            {"readiness", readiness_as_json(status.monitors)}};
}

QJsonObject read_codes_json(readCodes& controller) {
    const diagnostic_results& results = controller.results;
    const second_reading codes = both_readings(controller, part::codes);
    const second_status status = both_statuses(controller);
    QJsonObject object =
        both_results(codes_and_status(controller, status.own, codes.own_rows()),
                     codes_and_status(controller, status.standard, codes.standard_rows()), {codes});
    object.insert("interface", adapter_of(controller).interface_description());
    object.insert("protocol", adapter_of(controller).protocol_description());
    object.insert("ecus", results.no_of_ecus);
    if (results.answers.contains(part::permanent)) {
        const QJsonObject permanent = permanent_json(controller);
        for (auto part = permanent.begin(); part != permanent.end(); ++part)
            object.insert(part.key(), part.value());
    }
    if (status.differs)
        object.insert("differs", true);
    if (!status.faults.isEmpty()) {
        QJsonArray faults = object["faults"].toArray();
        faults += status.faults;
        object.insert("faults", faults);
    }
    return object;
}

QString read_codes_text(readCodes& controller) {
    const diagnostic_results& results = controller.results;
    const second_status status = both_statuses(controller);
    QString text =
        results.xtraInfoArray.join(QLatin1Char('\n')) + u'\n' + status_as_text(controller, status) + u'\n';
    text += shown_codes_as_text(controller, both_readings(controller, part::codes));
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
    QJsonObject object = read_codes_json(controller);
    const auto& refusal = controller.results.not_cleared;
    object.insert("cleared", refusal ? QJsonValue(refusal->isEmpty()) : QJsonValue());
    if (refusal && !refusal->isEmpty())
        object.insert("not_cleared", *refusal);
    return object;
}

QString clear_codes_text(readCodes& controller) {
    const QString end =
        controller.results.not_cleared.value_or(QStringLiteral("The codes were not cleared."));
    return read_codes_text(controller) + u'\n' + (end.isEmpty() ? QStringLiteral("Codes cleared") : end) +
           u'\n';
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
                             {"ecu", ecu_label(row.ecu)},
                             {"description", controller.description_of(row.code).trimmed()}};
    return codes;
}

QString codes_as_text(readCodes& controller, const QList<noted_row>& rows) {
    if (rows.isEmpty())
        return localised(QStringLiteral("NO_CODES")) + u'\n';
    QString text;
    for (const noted_row& row : rows) {
        const auto* code = std::get_if<code_row>(&row.row);
        const QString line =
            code ? QStringLiteral("%1  %2  %3")
                       .arg(code->code, ecu_label(code->ecu), controller.description_of(code->code).trimmed())
                 : row_text(part::codes, row.row);
        text += (row.note.isEmpty() ? line : QStringLiteral("%1  (%2)").arg(line, row.note)) + u'\n';
    }
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
