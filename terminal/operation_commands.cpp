#include "terminal/operation_commands.h"

#include "diagnostics/mode6_records.h"
#include "terminal/command_parts.h"

#include <QJsonArray>
#include <array>

namespace {

QJsonObject with_link(readCodes& controller, QJsonObject object) {
    const adapter_facts& adapter = controller.link.adapter();
    object.insert("interface", adapter.interface_description());
    object.insert("protocol", adapter.protocol_description());
    return object;
}

// --- pending ------------------------------------------------------------------------------------------

// "Engine RPM: 1726.00 RPM" taken apart at its first ": ".
std::pair<QString, QString> label_and_value(const QString& row) {
    const qsizetype colon = row.indexOf(QLatin1String(": "));
    return colon < 0 ? std::pair(row.trimmed(), QString())
                     : std::pair(row.first(colon).trimmed(), row.sliced(colon + 2).trimmed());
}

QJsonObject pending_as_json(readCodes& controller, const QStringList& pending, const QStringList& frame) {
    QJsonArray freeze;
    QJsonValue freezed_by = QJsonValue::Null;
    for (const QString& row : frame) {
        const auto [label, value] = label_and_value(row);
        if (label == QLatin1String("Freezed by"))
            freezed_by = value.section(u'|', 0, 0);
        else if (!value.isEmpty())
            freeze += QJsonObject{{"label", label}, {"value", value}};
    }
    return {{"pending", codes_as_json(controller, pending)}, {"freezed_by", freezed_by}, {"freeze", freeze}};
}

QJsonObject pending_json(readCodes& controller) {
    const diagnostic_results& results = controller.results;
    const second_reading codes = both_readings(controller, result_list::pending);
    const second_reading frame = both_readings(controller, result_list::freeze);
    QJsonObject object = pending_as_json(controller, results.pendingArray, results.freezeArray);
    object.insert("rows", QJsonObject{{"pending", QJsonArray::fromStringList(results.pendingArray)},
                                      {"freeze", QJsonArray::fromStringList(results.freezeArray)}});
    return with_link(controller,
                     with_standard(object,
                                   pending_as_json(controller, codes.standard_rows(), frame.standard_rows()),
                                   {codes, frame}));
}

QString pending_text(readCodes& controller) {
    const second_reading codes = both_readings(controller, result_list::pending);
    return QStringLiteral("Pending codes:\n") + codes_as_text(controller, codes.shown()) +
           line_as_text(codes) + QStringLiteral("\nFreeze frame:\n") +
           shown_as_text(both_readings(controller, result_list::freeze), [](const QString& row) {
               return QString(row).replace(u'|', QLatin1String(" ")) + u'\n';
           });
}

// --- vehicle-info -------------------------------------------------------------------------------------

QJsonObject vehicle_rows_json(const QStringList& rows) {
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
    for (const QString& row : rows) {
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
    return object;
}

QJsonObject vehicle_info_json(readCodes& controller) {
    const second_reading reading = both_readings(controller, result_list::vehicle);
    QJsonObject object = vehicle_rows_json(reading.own_rows());
    object.insert("rows", QJsonArray::fromStringList(reading.own_rows()));
    return with_link(controller,
                     with_standard(object, vehicle_rows_json(reading.standard_rows()), {reading}));
}

QString vehicle_info_text(readCodes& controller) {
    return shown_as_text(both_readings(controller, result_list::vehicle), [](const QString& row) {
        return QString(row).replace(u'|', QLatin1String("  ")) + u'\n';
    });
}

// --- test results -------------------------------------------------------------------------------------

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

QJsonArray tests_as_json(const QStringList& rows) {
    QJsonArray tests;
    for (const QString& row : rows)
        tests += test_as_json(row);
    return tests;
}

QJsonObject tests_json(readCodes& controller, result_list list) {
    const second_reading reading = both_readings(controller, list);
    const QJsonObject object{{"tests", tests_as_json(reading.own_rows())},
                             {"rows", QJsonArray::fromStringList(reading.own_rows())}};
    return with_link(controller,
                     with_standard(object, {{"tests", tests_as_json(reading.standard_rows())}}, {reading}));
}

QString tests_text(readCodes& controller, result_list list) {
    return shown_as_text(both_readings(controller, list), [](const QString& row) {
        const mode6_row test = split_mode6_row(row);
        return QStringLiteral("%1\n    %2\n    %3\n")
            .arg(test.title, test.subject, QString(test.text).replace(u'\n', u' '));
    });
}

// --- extras and the report ----------------------------------------------------------------------------

QJsonObject extras_json(readCodes& controller) {
    QJsonArray extras;
    for (const QString& row : controller.results.xtrasArray)
        extras += QJsonObject{{"label", row.section(QLatin1String(":|"), 0, 0)},
                              {"value", row.section(QLatin1String(":|"), 1).section(u'|', 0, 0).trimmed()}};
    return with_link(controller, {{"extras", extras},
                                  {"rows", QJsonArray::fromStringList(controller.results.xtrasArray)}});
}

QString extras_text(readCodes& controller) {
    QString text;
    for (const QString& row : controller.results.xtrasArray)
        text += QString(row).remove(u'|') + u'\n';
    return text;
}

QString report_text(readCodes& controller) {
    return controller.report_of(op_read_codes).text + u'\n';
}

QJsonObject report_json(readCodes& controller) {
    const diagnostic_report report = controller.report_of(op_read_codes);
    return with_link(controller,
                     {{"title", report.title}, {"description", report.description}, {"text", report.text}});
}

// clang-format off
constexpr std::array<cli_command, 8> commands{{
    {"pending",      "pending trouble codes and the freeze frame",
     [](readCodes& c) { c.readPendingFreezeCodes(); }, pending_json,      pending_text},
    {"permanent",    "permanent trouble codes, and the monitors of this drive cycle",
     [](readCodes& c) { c.readPermanent(); },
     [](readCodes& c) { return with_link(c, permanent_json(c)); }, permanent_text},
    {"vehicle-info", "voltage, VIN and the value of every supported PID",
     [](readCodes& c) { c.readVehicleInfo(); },        vehicle_info_json, vehicle_info_text},
    {"mode6",        "the results of all on-board monitoring tests",
     [](readCodes& c) { c.readMode6Support(); },
     [](readCodes& c) { return tests_json(c, result_list::mode6); },
     [](readCodes& c) { return tests_text(c, result_list::mode6); }},
    {"misfire",      "the misfire counters of each cylinder",
     [](readCodes& c) { c.readMisfire(); },
     [](readCodes& c) { return tests_json(c, result_list::misfire); },
     [](readCodes& c) { return tests_text(c, result_list::misfire); }},
    {"o2-tests",     "the test results of the oxygen sensor monitors",
     [](readCodes& c) { c.readO2(); },
     [](readCodes& c) { return tests_json(c, result_list::o2); },
     [](readCodes& c) { return tests_text(c, result_list::o2); }},
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
