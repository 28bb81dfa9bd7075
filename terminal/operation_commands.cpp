#include "terminal/operation_commands.h"

#include "terminal/command_parts.h"

#include <QJsonArray>
#include <array>

namespace brivant {

namespace {

QJsonObject with_link(readCodes& controller, QJsonObject object) {
    const adapter_facts& adapter = controller.link.adapter();
    object.insert("interface", adapter.interface_description());
    object.insert("protocol", adapter.protocol_description());
    return object;
}

// --- pending ------------------------------------------------------------------------------------------

QJsonObject pending_as_json(readCodes& controller, const QList<result_row>& pending,
                            const QList<result_row>& frame) {
    QJsonArray freeze;
    QJsonValue freezed_by = QJsonValue::Null;
    for (const value_row& row : rows_of<value_row>(frame)) {
        if (row.pid.isEmpty())
            freezed_by = row.value;
        else
            freeze += QJsonObject{{"label", row.label.trimmed()}, {"value", row.value}};
    }
    return {{"pending", codes_as_json(controller, pending)}, {"freezed_by", freezed_by}, {"freeze", freeze}};
}

QJsonArray texts_as_json(part which, const QList<noted_row>& rows) {
    return QJsonArray::fromStringList(row_texts(which, plain(rows)));
}

QJsonObject pending_json(readCodes& controller) {
    const second_reading codes = both_readings(controller, part::pending);
    const second_reading frame = both_readings(controller, part::freeze);
    const auto result = [&](const QList<noted_row>& pending, const QList<noted_row>& frozen) {
        QJsonObject object = pending_as_json(controller, plain(pending), plain(frozen));
        object.insert("rows", QJsonObject{{"pending", texts_as_json(part::pending, pending)},
                                          {"freeze", texts_as_json(part::freeze, frozen)}});
        return object;
    };
    return with_link(controller,
                     both_results(result(codes.own_rows(), frame.own_rows()),
                                  result(codes.standard_rows(), frame.standard_rows()), {codes, frame}));
}

QString pending_text(readCodes& controller) {
    return QStringLiteral("Pending codes:\n") +
           shown_codes_as_text(controller, both_readings(controller, part::pending)) +
           QStringLiteral("\nFreeze frame:\n") +
           shown_as_text(both_readings(controller, part::freeze), [](const result_row& row) {
               return row_text(part::freeze, row).replace(u'|', QLatin1String(" ")) + u'\n';
           });
}

// --- vehicle-info -------------------------------------------------------------------------------------

QJsonObject vehicle_rows_json(const QList<result_row>& rows) {
    QJsonObject object;
    QJsonArray ecus;
    for (const result_row& row : rows) {
        if (const auto* ecu = std::get_if<ecu_row>(&row)) {
            ecus += QJsonObject{{"header", ecu->header}, {"name", ecu->name}, {"values", QJsonArray()}};
        } else if (const auto* value = std::get_if<value_row>(&row); value && value->pid.isEmpty()) {
            if (value->more.isEmpty()) // else the count of the ECUs, which are listed
                object.insert(value->label.toLower(), value->value);
        } else if (value && !ecus.isEmpty()) {
            QJsonObject asked = ecus.last().toObject();
            QJsonArray values = asked["values"].toArray();
            values += QJsonObject{{"pid", value->pid}, {"name", value->label}, {"value", value->value}};
            asked["values"] = values;
            ecus.replace(ecus.size() - 1, asked);
        }
    }
    object.insert("ecus", ecus);
    return object;
}

QJsonObject vehicle_info_json(readCodes& controller) {
    const second_reading reading = both_readings(controller, part::vehicle);
    const auto result = [](const QList<noted_row>& rows) {
        QJsonObject object = vehicle_rows_json(plain(rows));
        object.insert("rows", texts_as_json(part::vehicle, rows));
        return object;
    };
    return with_link(controller,
                     both_results(result(reading.own_rows()), result(reading.standard_rows()), {reading}));
}

QString vehicle_info_text(readCodes& controller) {
    return shown_as_text(both_readings(controller, part::vehicle), [](const result_row& row) {
        return row_text(part::vehicle, row).replace(u'|', QLatin1String("  ")) + u'\n';
    });
}

// --- test results -------------------------------------------------------------------------------------

QJsonObject test_as_json(const test_row& test) {
    const auto number = [](const QString& text) { return text.toDouble(); };
    QJsonObject object{{"index", test.index}, {"value", number(test.value)}, {"passed", test.passed}};
    if (test.was_not_run())
        object.insert("not_run", true);
    object.insert("tid", test.tid);
    if (test.is_can) {
        object.insert("obdmid", test.obdmid);
        object.insert("monitor", test.monitor);
        object.insert("test", test.test);
        object.insert("unit", test.unit);
        object.insert("minimum", number(test.minimum));
        object.insert("maximum", number(test.maximum));
    } else {
        object.insert("component", test.component);
        object.insert("limit", number(test.minimum));
        object.insert("limit_is", test.limit_is_maximum ? "max" : "min");
    }
    return object;
}

QJsonArray tests_as_json(const QList<noted_row>& rows) {
    QJsonArray tests;
    for (const test_row& row : rows_of<test_row>(plain(rows)))
        tests += test_as_json(row);
    return tests;
}

template <part which>
QJsonObject tests_json(readCodes& controller) {
    const second_reading reading = both_readings(controller, which);
    const auto result = [](const QList<noted_row>& rows) {
        return QJsonObject{{"tests", tests_as_json(rows)}, {"rows", texts_as_json(which, rows)}};
    };
    return with_link(controller,
                     both_results(result(reading.own_rows()), result(reading.standard_rows()), {reading}));
}

template <part which>
QString tests_text(readCodes& controller) {
    return shown_as_text(both_readings(controller, which), [](const result_row& row) {
        const auto* test = std::get_if<test_row>(&row);
        return test ? QStringLiteral("%1\n    %2\n    %3\n")
                          .arg(test->title().trimmed(), test->subject().trimmed(),
                               test->text().trimmed().replace(u'\n', u' '))
                    : row_text(which, row) + u'\n';
    });
}

// --- extras and the report ----------------------------------------------------------------------------

QJsonObject extras_json(readCodes& controller) {
    const second_reading reading = both_readings(controller, part::extras);
    QJsonArray extras;
    for (const value_row& row : rows_of<value_row>(plain(reading.own_rows())))
        extras += QJsonObject{{"label", row.label}, {"value", row.value.trimmed()}};
    return with_link(controller,
                     {{"extras", extras}, {"rows", texts_as_json(part::extras, reading.own_rows())}});
}

QString extras_text(readCodes& controller) {
    QString text;
    for (const QString& row : row_texts(part::extras, controller.results.rows(part::extras)))
        text += QString(row).remove(u'|') + u'\n';
    return text;
}

QString report_text(readCodes& controller) {
    return without_markup(controller.report_of(op_read_codes).text) + u'\n';
}

QJsonObject report_json(readCodes& controller) {
    const diagnostic_report report = controller.report_of(op_read_codes);
    return with_link(controller, {{"title", report.title},
                                  {"description", report.description},
                                  {"text", without_markup(report.text)}});
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
     [](readCodes& c) { c.readMode6Support(); }, tests_json<part::mode6>,   tests_text<part::mode6>},
    {"misfire",      "the misfire counters of each cylinder",
     [](readCodes& c) { c.readMisfire(); },      tests_json<part::misfire>, tests_text<part::misfire>},
    {"o2-tests",     "the test results of the oxygen sensor monitors",
     [](readCodes& c) { c.readO2(); },           tests_json<part::o2>,      tests_text<part::o2>},
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

} // namespace brivant
