#include "obd/standard_reading/test_results.h"

#include <QtEndian>
#include <algorithm>
#include <iterator>

namespace brivant {

namespace {

struct scaling {
    int uasid;
    double factor;
    double offset;
    int decimals;
    const char* unit;
};

// SAE J1979 unit and scaling identifiers. From 80 on the raw value is signed.
// clang-format off
constexpr scaling scalings[] = {
    {0x01, 1,             0,       0, ""},
    {0x02, 0.1,           0,       1, ""},
    {0x03, 0.01,          0,       2, ""},
    {0x04, 0.001,         0,       3, ""},
    {0x05, 0.0000305,     0,       6, ""},
    {0x06, 0.000305,      0,       5, ""},
    {0x07, 0.25,          0,       2, "rpm"},
    {0x08, 0.01,          0,       2, "km/h"},
    {0x09, 1,             0,       0, "km/h"},
    {0x0A, 0.122,         0,       3, "mV"},
    {0x0B, 0.001,         0,       3, "V"},
    {0x0C, 0.01,          0,       2, "V"},
    {0x0D, 0.00390625,    0,       4, "mA"},
    {0x0E, 0.001,         0,       3, "A"},
    {0x0F, 0.01,          0,       2, "A"},
    {0x10, 1,             0,       0, "ms"},
    {0x11, 100,           0,       0, "ms"},
    {0x12, 1,             0,       0, "s"},
    {0x13, 1,             0,       0, "mOhm"},
    {0x14, 1,             0,       0, "Ohm"},
    {0x15, 1,             0,       0, "kOhm"},
    {0x16, 0.1,           -40,     1, "° C"},
    {0x17, 0.01,          0,       2, "kPa"},
    {0x18, 0.0117,        0,       4, "kPa"},
    {0x19, 0.079,         0,       3, "kPa"},
    {0x1A, 1,             0,       0, "kPa"},
    {0x1B, 10,            0,       0, "kPa"},
    {0x1C, 0.01,          0,       2, "°"},
    {0x1D, 0.5,           0,       1, "°"},
    {0x1E, 0.0000305,     0,       6, "lambda"},
    {0x1F, 0.05,          0,       2, "A/F"},
    {0x20, 0.00390625,    0,       5, ""},
    {0x21, 1,             0,       0, "mHz"},
    {0x22, 1,             0,       0, "Hz"},
    {0x23, 1,             0,       0, "kHz"},
    {0x24, 1,             0,       0, "counts"},
    {0x25, 1,             0,       0, "km"},
    {0x26, 0.1,           0,       1, "mV/ms"},
    {0x27, 0.01,          0,       2, "g/s"},
    {0x28, 1,             0,       0, "g/s"},
    {0x29, 0.25,          0,       2, "Pa/s"},
    {0x2A, 0.001,         0,       3, "kg/h"},
    {0x2B, 1,             0,       0, "switches"},
    {0x2C, 0.01,          0,       2, "g/cyl"},
    {0x2D, 0.01,          0,       2, "mg/stroke"},
    {0x2E, 1,             0,       0, "true/false"},
    {0x2F, 0.01,          0,       2, "%"},
    {0x30, 0.001526,      0,       4, "%"},
    {0x31, 0.001,         0,       3, "L"},
    {0x32, 0.0000305,     0,       6, "in"},
    {0x33, 0.00024414,    0,       5, "lambda"},
    {0x34, 1,             0,       0, "min"},
    {0x35, 10,            0,       0, "ms"},
    {0x36, 0.01,          0,       2, "g"},
    {0x37, 0.1,           0,       1, "g"},
    {0x38, 1,             0,       0, "g"},
    {0x39, 0.01,          -327.68, 2, "%"},
    {0x3A, 0.001,         0,       3, "g"},
    {0x3B, 0.0001,        0,       4, "g"},
    {0x3C, 0.1,           0,       1, "us"},
    {0x3D, 0.01,          0,       2, "mA"},
    {0x3E, 0.00006103516, 0,       6, "mm2"},
    {0x3F, 0.01,          0,       2, "L"},
    {0x40, 1,             0,       0, "ppm"},
    {0x41, 0.01,          0,       2, "uA"},
    {0x42, 0.1,           0,       1, "kJ"},
    {0x43, 0.00024414,    0,       5, "g/kWh"},

    {0x81, 1,             0,       0, ""},
    {0x82, 0.1,           0,       1, ""},
    {0x83, 0.01,          0,       2, ""},
    {0x84, 0.001,         0,       3, ""},
    {0x85, 0.0000305,     0,       6, ""},
    {0x86, 0.000305,      0,       5, ""},
    {0x87, 1,             0,       0, "ppm"},
    {0x8A, 0.122,         0,       3, "mV"},
    {0x8B, 0.001,         0,       3, "V"},
    {0x8C, 0.01,          0,       2, "V"},
    {0x8D, 0.00390625,    0,       4, "mA"},
    {0x8E, 0.001,         0,       3, "A"},
    {0x8F, 1,             0,       0, "us"},
    {0x90, 1,             0,       0, "ms"},
    {0x91, 0.1,           0,       1, "s"},
    {0x92, 0.1,           0,       1, "Nm"},
    {0x96, 0.1,           0,       1, "° C"},
    {0x97, 0.01,          0,       2, "° C"},
    {0x98, 1,             0,       0, "mg/stroke"},
    {0x99, 0.1,           0,       1, "kPa"},
    {0x9C, 0.01,          0,       2, "°"},
    {0x9D, 0.5,           0,       1, "°"},
    {0xA8, 1,             0,       0, "g/s"},
    {0xA9, 0.25,          0,       2, "Pa/s"},
    {0xAD, 0.01,          0,       2, "mg/stroke"},
    {0xAE, 0.1,           0,       1, "mg/stroke"},
    {0xAF, 0.01,          0,       2, "%"},
    {0xB0, 0.003052,      0,       4, "%"},
    {0xB1, 2,             0,       0, "mV/s"},
    {0xFB, 10,            0,       0, "kPa"},
    {0xFC, 0.01,          0,       2, "kPa"},
    {0xFD, 0.001,         0,       3, "kPa"},
    {0xFE, 0.25,          0,       2, "Pa"},
};
// clang-format on

constexpr qsizetype record_size = 9;
constexpr int signed_bit = 0x80;
constexpr int position_in_group = 0x1F; // of a monitor or TID among the 32 that one support answer tells
const QString cut_record = QStringLiteral("the answer ends within a test's record");

const scaling* scaling_of(int uasid) {
    const auto* found = std::find_if(std::begin(scalings), std::end(scalings),
                                     [uasid](const scaling& row) { return row.uasid == uasid; });
    return found != std::end(scalings) ? found : nullptr;
}

int byte_at(const QByteArray& bytes, qsizetype at) {
    return static_cast<unsigned char>(bytes.at(at));
}

double scaled(const QByteArray& data, qsizetype at, const scaling& row) {
    const auto raw = qFromBigEndian<quint16>(data.constData() + at);
    const double number = (row.uasid & signed_bit) != 0 ? static_cast<qint16>(raw) : raw;
    return number * row.factor + row.offset;
}

// Service byte, then records of nine bytes. An answer about support holds five bytes a group instead.
void can_records(const QString& ecu, const QByteArray& data, ecu_tests& result) {
    if (data.size() < 2 || (byte_at(data, 1) & position_in_group) == 0)
        return;
    qsizetype at = 1;
    for (; at + record_size <= data.size(); at += record_size) {
        const scaling* row = scaling_of(byte_at(data, at + 2));
        if (!row) {
            result.fault = QStringLiteral("the scaling %1 is not defined")
                               .arg(QString::fromLatin1(data.mid(at + 2, 1).toHex().toUpper()));
            continue;
        }
        result.tests.append({ecu, byte_at(data, at), byte_at(data, at + 1), row->uasid,
                             scaled(data, at + 3, *row), scaled(data, at + 5, *row),
                             scaled(data, at + 7, *row), QString::fromUtf8(row->unit), row->decimals});
    }
    if (at != data.size())
        result.fault = cut_record;
}

// Service byte, TID, limit type and component, value, limit. The first TID of a group is about support, with
// FF in the component's place.
void legacy_record(const QString& ecu, const QByteArray& data, ecu_tests& result) {
    constexpr qsizetype message_size = 7;
    constexpr int limit_is_minimum = 0x80;
    constexpr int no_component = 0xFF;
    if (data.size() > 1 && byte_at(data, 1) == 0)
        return;
    if (data.size() != message_size) {
        result.fault = cut_record;
        return;
    }
    if ((byte_at(data, 1) & position_in_group) == 0 && byte_at(data, 2) == no_component)
        return;
    ecu_test test{ecu, byte_at(data, 1), byte_at(data, 2) & ~limit_is_minimum};
    test.value = qFromBigEndian<quint16>(data.constData() + 3);
    const double limit = qFromBigEndian<quint16>(data.constData() + 5);
    ((byte_at(data, 2) & limit_is_minimum) != 0 ? test.minimum : test.maximum) = limit;
    result.tests.append(test);
}

} // namespace

ecu_tests read_tests(const raw_reply& reply) {
    ecu_tests result;
    for (const ecu_answer& answer : answers_to(0x06, reply)) {
        if (!answer.fault.isEmpty())
            result.fault = answer.fault;
        for (const QByteArray& data : answer.messages) {
            if (is_iso_15765(reply.protocol))
                can_records(answer.ecu, data, result);
            else
                legacy_record(answer.ecu, data, result);
        }
    }
    return result;
}

QString test_value_text(const ecu_test& test, double value) {
    const QString number = QString::number(value, 'f', test.decimals);
    return test.unit.isEmpty() ? number : number + QLatin1Char(' ') + test.unit;
}

} // namespace brivant
