#include "terminal/operation_commands.h"

#include "diagnostics/mode6_records.h"
#include "terminal/command_parts.h"

#include <QJsonArray>
#include <array>

namespace {

QJsonObject with_link(readCodes& controller, QJsonObject object) {
    const process_state& state = controller.what_it_works_with().state;
    object.insert("interface", state.interface_description);
    object.insert("protocol", state.protocol_description);
    return object;
}

// --- pending -------------------------------------------------------------------------------------------------

// "Engine RPM: 1726.00 RPM" taken apart at its first ": ".
std::pair<QString, QString> label_and_value(const QString& row) {
    const qsizetype colon = row.indexOf(QLatin1String(": "));
    return colon < 0 ? std::pair(row.trimmed(), QString())
                     : std::pair(row.first(colon).trimmed(), row.sliced(colon + 2).trimmed());
}

QJsonObject pending_json(readCodes& controller) {
    const diagnostic_results& results = controller.results();
    QJsonArray freeze;
    QJsonValue freezed_by = QJsonValue::Null;
    for (const QString& row : results.freezeArray) {
        const auto [label, value] = label_and_value(row);
        if (label == QLatin1String("Freezed by"))
            freezed_by = value.section(u'|', 0, 0);
        else if (!value.isEmpty())
            freeze += QJsonObject{{"label", label}, {"value", value}};
    }
    return with_link(controller,
                     {{"pending", codes_as_json(controller, results.pendingArray)},
                      {"freezed_by", freezed_by},
                      {"freeze", freeze},
                      {"rows", QJsonObject{{"pending", QJsonArray::fromStringList(results.pendingArray)},
                                           {"freeze", QJsonArray::fromStringList(results.freezeArray)}}}});
}

QString pending_text(readCodes& controller) {
    QString text = QStringLiteral("Pending codes:\n") + codes_as_text(controller, controller.results().pendingArray) +
                   QStringLiteral("\nFreeze frame:\n");
    for (const QString& row : controller.results().freezeArray)
        text += QString(row).replace(u'|', QLatin1String(" ")) + u'\n';
    return text;
}

// --- vehicle-info --------------------------------------------------------------------------------------------

QJsonObject vehicle_info_json(readCodes& controller) {
    QJsonObject object;
    QJsonArray ecus;
    QJsonObject ecu;
    QJsonArray values;
    const auto close_ecu = [&] {
        if (ecu.isEmpty())
            return;
        ecu.insert("values", values);
        ecus += ecu;
        values = {};
    };
    for (const QString& row : controller.results().vehInfoArray) {
        const QStringList fields = row.split(u'|');
        if (row.startsWith(QLatin1String(" Voltage: ")))
            object.insert("voltage", row.sliced(10).trimmed());
        else if (row.startsWith(QLatin1String(" VIN: ")))
            object.insert("vin", row.sliced(6).trimmed());
        else if (row.startsWith(QLatin1String(" --- ECU("))) {
            close_ecu();
            ecu = {{"header", row.section(u'(', 1).section(u')', 0, 0)},
                   {"name", row.section(u')', 1).section(QLatin1String("---"), 0, 0).trimmed()}};
        } else if (fields.size() == 3)
            values += QJsonObject{{"pid", fields[0]}, {"name", fields[1]}, {"value", fields[2]}};
    }
    close_ecu();
    object.insert("ecus", ecus);
    object.insert("rows", QJsonArray::fromStringList(controller.results().vehInfoArray));
    return with_link(controller, object);
}

QString vehicle_info_text(readCodes& controller) {
    QString text;
    for (const QString& row : controller.results().vehInfoArray)
        text += QString(row).replace(u'|', QLatin1String("  ")) + u'\n';
    return text;
}

// --- test results --------------------------------------------------------------------------------------------

QJsonObject test_as_json(const QString& row) {
    const mode6_row test = split_mode6_row(row);
    QJsonObject object{{"index", test.index}, {"value", test.value}, {"passed", test.passed}};
    if (test.is_can) {
        object.insert("obdmid", test.obdmid);
        object.insert("monitor", test.monitor);
        object.insert("tid", test.tid);
        object.insert("test", test.test);
        object.insert("unit", test.unit);
        object.insert("minimum", test.minimum);
        object.insert("maximum", test.maximum);
    } else {
        object.insert("tid", test.tid);
        object.insert("component", test.component);
        object.insert("limit", test.minimum);
        object.insert("limit_is", test.limit_is_maximum ? "max" : "min");
    }
    return object;
}

QJsonObject tests_json(readCodes& controller, const QStringList& rows) {
    QJsonArray tests;
    for (const QString& row : rows)
        tests += test_as_json(row);
    return with_link(controller, {{"tests", tests}, {"rows", QJsonArray::fromStringList(rows)}});
}

QString tests_text(const QStringList& rows) {
    QString text;
    for (const QString& row : rows) {
        const mode6_row test = split_mode6_row(row);
        text += QStringLiteral("%1\n    %2\n    %3\n").arg(test.title, test.subject, QString(test.text).replace(u'\n', u' '));
    }
    return text;
}

// --- extras and the report -----------------------------------------------------------------------------------

QJsonObject extras_json(readCodes& controller) {
    QJsonArray extras;
    for (const QString& row : controller.results().xtrasArray)
        extras += QJsonObject{{"label", row.section(QLatin1String(":|"), 0, 0)},
                              {"value", row.section(QLatin1String(":|"), 1).section(u'|', 0, 0).trimmed()}};
    return with_link(controller,
                     {{"extras", extras}, {"rows", QJsonArray::fromStringList(controller.results().xtrasArray)}});
}

QString extras_text(readCodes& controller) {
    QString text;
    for (const QString& row : controller.results().xtrasArray)
        text += QString(row).remove(u'|') + u'\n';
    return text;
}

QString report_text(readCodes& controller) {
    return controller.report_of(op_read_codes).text + u'\n';
}

QJsonObject report_json(readCodes& controller) {
    const diagnostic_report report = controller.report_of(op_read_codes);
    return with_link(controller, {{"title", report.title}, {"description", report.description}, {"text", report.text}});
}

// clang-format off
constexpr std::array<cli_command, 7> commands{{
    {"pending",      "pending trouble codes and the freeze frame",
     [](readCodes& c) { c.readPendingFreezeCodes(); }, pending_json,      pending_text},
    {"vehicle-info", "voltage, VIN and the value of every supported PID",
     [](readCodes& c) { c.readVehicleInfo(); },        vehicle_info_json, vehicle_info_text},
    {"mode6",        "the results of all on-board monitoring tests",
     [](readCodes& c) { c.readMode6Support(); },
     [](readCodes& c) { return tests_json(c, c.results().mode6Array); },
     [](readCodes& c) { return tests_text(c.results().mode6Array); }},
    {"misfire",      "the misfire counters of each cylinder",
     [](readCodes& c) { c.readMisfire(); },
     [](readCodes& c) { return tests_json(c, c.results().misfireArray); },
     [](readCodes& c) { return tests_text(c.results().misfireArray); }},
    {"o2-tests",     "the test results of the oxygen sensor monitors",
     [](readCodes& c) { c.readO2(); },
     [](readCodes& c) { return tests_json(c, c.results().o2XtraArray); },
     [](readCodes& c) { return tests_text(c.results().o2XtraArray); }},
    {"extras",       "maker-specific values",
     [](readCodes& c) { c.readXtras(); },              extras_json,       extras_text},
    {"report",       "codes, pending codes, freeze frame and readiness as one text",
     [](readCodes& c) { c.read_for_report(); },        report_json,       report_text},
}};
// clang-format on

} // namespace

std::span<const cli_command> operation_commands() {
    return commands;
}
