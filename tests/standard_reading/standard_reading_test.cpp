#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/pid_table.h"
#include "obd/standard_reading/pid_values.h"
#include "obd/standard_reading/test_results.h"

#include "tests/support/print_qt.h"

#include <QFile>
#include <gtest/gtest.h>

namespace brivant {

namespace {

QString said(const QString& ecu, const QString& text, const QString& fault) {
    QStringList words{ecu, text, fault.isEmpty() ? QString() : QStringLiteral("! ") + fault};
    words.removeAll(QString());
    return words.join(u' ');
}

QStringList pid_lines(int pid, const raw_reply& reply) {
    QStringList lines;
    for (const ecu_answer& answer : answers_to(1, reply)) {
        for (const QByteArray& data : answer.messages) {
            QString text = pid_value_text(decode_pid(pid, data.mid(2), unit_system::metric));
            lines.append(said(answer.ecu, pid % 0x20 == 0 ? text.remove(u',') : text, {}));
        }
        if (answer.messages.isEmpty())
            lines.append(said(answer.ecu, {}, answer.fault));
    }
    return lines;
}

QStringList test_lines(const raw_reply& reply) {
    QStringList lines;
    const ecu_tests tests = read_tests(reply);
    const auto limit = [](const ecu_test& t, std::optional<double> l) {
        return l ? QString::number(*l, 'f', t.decimals) : QString();
    };
    for (const ecu_test& t : tests.tests)
        lines.append(QStringLiteral("%1 %2/%3 %4 %5..%6 %7")
                         .arg(t.ecu)
                         .arg(t.monitor, 2, 16, QLatin1Char('0'))
                         .arg(t.test, 2, 16, QLatin1Char('0'))
                         .arg(test_value_text(t, t.value), limit(t, t.minimum), limit(t, t.maximum),
                              t.passed() ? QStringLiteral("passed") : QStringLiteral("failed")));
    if (!tests.fault.isEmpty())
        lines.append(said({}, {}, tests.fault));
    return lines;
}

QStringList lines_for(const QString& request, const raw_reply& reply) {
    const int service = request.left(2).toInt(nullptr, 16);
    const int which = request.mid(3, 2).toInt(nullptr, 16);
    QStringList lines;
    switch (service) {
    case 0x01: return pid_lines(which, reply);
    case 0x06: return test_lines(reply);
    case 0x09:
        for (const ecu_info& info : read_vehicle_info(static_cast<info_type>(which), reply))
            lines.append(said(info.ecu, info.items.join(u' '), info.fault));
        return lines;
    default:
        for (const ecu_codes& codes : read_trouble_codes(service, reply))
            lines.append(said(codes.ecu, codes.codes.join(u' '), codes.fault));
        return lines;
    }
}

} // namespace

TEST(standard_reading, says_what_real_cars_said) {
    QFile file(QStringLiteral(BV_TESTS "/standard_reading/captures.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    raw_reply reply;
    QString request;
    QStringList expected;
    int blocks = 0;
    const auto check = [&] {
        if (request.isEmpty())
            return;
        ++blocks;
        raw_reply packed = reply;
        packed.text.remove(u' ');
        for (const raw_reply& shown : {reply, packed})
            EXPECT_EQ(lines_for(request, shown).join(u'\n').toUpper(), expected.join(u'\n').toUpper())
                << request.toStdString() << "\n"
                << reply.text.toStdString();
        request.clear();
        reply.text.clear();
        expected.clear();
    };
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const QString rest = line.mid(2);
        if (line.startsWith(u"protocol") || line.startsWith(u"headers") || line.startsWith(u'>'))
            check();
        if (line.startsWith(u"protocol "))
            reply.protocol = line.mid(9).toInt();
        else if (line.startsWith(u"headers "))
            reply.headers_shown = line.endsWith(u"on");
        else if (line.startsWith(u'>'))
            request = rest;
        else if (line.startsWith(u'<'))
            reply.text += rest + u'\r';
        else if (line.startsWith(u'='))
            expected.append(rest);
    }
    check();
    EXPECT_GT(blocks, 40);
}

// Frames past the fifteenth: the sequence goes on from 0. Out of it, nothing is read.
TEST(standard_reading, sequence_of_frames_wraps) {
    QString reply = QStringLiteral("7E8 10 7A 43 3C 01 01 01 02\r");
    for (int frame = 1; frame <= 17; ++frame)
        reply += QStringLiteral("7E8 2%1 %2\r")
                     .arg(frame % 16, 1, 16)
                     .arg(QStringLiteral("01 11 ").repeated(4).left(frame == 17 ? 12 : 21).trimmed());
    const auto whole = read_trouble_codes(3, {reply, 6, true});
    ASSERT_EQ(whole.size(), 1);
    EXPECT_EQ(whole.first().fault, QString());
    EXPECT_EQ(whole.first().codes.size(), 60);
    QString segments = QString(reply).replace(QStringLiteral("7E8 10 7A"), QStringLiteral("07A\r0:"));
    for (int sequence = 0; sequence < 16; ++sequence)
        segments.replace(QStringLiteral("7E8 2%1 ").arg(sequence, 1, 16),
                         QStringLiteral("%1:").arg(sequence, 1, 16));
    EXPECT_EQ(read_trouble_codes(3, {segments, 6, false}).value(0).codes, whole.first().codes);
    const auto torn =
        read_trouble_codes(3, {reply.replace(QStringLiteral("7E8 20"), QStringLiteral("7E8 21")), 6, true});
    EXPECT_EQ(torn.first().codes, QStringList());
    EXPECT_FALSE(torn.first().fault.isEmpty());
}

struct pid_case {
    const char* reply;
    const char* metric;
    const char* imperial;
};

TEST(standard_reading, pid_values) {
    const pid_case cases[] = {
        {"410D3C", "60 km/h", "37.3 mph"},
        {"410B8C", "140 kPa", "41.3 in.Hg"},
        {"411003E8", "10.00 g/s", "1.32 lb/min"},
        {"41149A80", "voltage 0.770 V, fuel trim 0.0 %", "voltage 0.770 V, fuel trim 0.0 %"},
        {"411B9AFF", "voltage 0.770 V", "voltage 0.770 V"},
        {"411B9A", "(data bytes are missing)", nullptr},
        {"410680", "0.0 %", nullptr},
        {"410680C0", "0.0 %, bank 3 50.0 %", nullptr},
        {"41068000000000", "0.0 %", nullptr},
        {"414F0000000A",
         "greatest manifold pressure 100 kPa, usual range of the equivalence ratio, "
         "usual range of O2 voltage, usual range of O2 current",
         nullptr},
        {"415307D0", "10.000 kPa", "40.146 in.H2O"},
        {"41248000C000", "voltage 6.000 V, lambda 1.000", "voltage 6.000 V, lambda 1.000"},
        {"413480008100", "current 1.000 mA, lambda 1.000", "current 1.000 mA, lambda 1.000"},
        {"4132FFFC", "-1.00 Pa", "-0.004 in.H2O"},
        {"413C1388", "460.0 ° C", "860.0 ° F"},
        {"41423A98", "15.000 V", "15.000 V"},
        {"41550080", "bank 1 -100.0 %, bank 3 0.0 %", "bank 1 -100.0 %, bank 3 0.0 %"},
        {"415580", "bank 1 0.0 %", "bank 1 0.0 %"},
        {"416703505A", "sensor 1 40 ° C, sensor 2 50 ° C", "sensor 1 104.0 ° F, sensor 2 122.0 ° F"},
        {"4167025000", "sensor 2 -40 ° C", "sensor 2 -40.0 ° F"},
        {"4167000000", "(the car marks every value of it as unsupported or unavailable)", nullptr},
        {"416703", "(data bytes are missing)", nullptr},
        {"41670350", "(data bytes are missing)", nullptr},
        {"41650200", "automatic transmission in park or neutral", nullptr},
        {"41650008", "(the car marks every value of it as unsupported or unavailable)", nullptr},
        {"417103404000000002", "commanded turbine A 25.1 %, turbine A 25.1 %", nullptr},
        {"4171040000000002", "turbine A control: closed loop", nullptr},
        {"417AFEFF9C000A0000", "filter inlet 0.10 kPa, filter outlet 0.00 kPa", nullptr},
        {"417A01FF9C00000000", "filter difference -1.00 kPa", nullptr},
        {"417D00", "none", nullptr},
        {"418313006400C800000000", "bank 1 sensor 2 200 ppm", nullptr},
        {"418B5101020000003C",
         "regeneration trigger 0.8 %, mean distance between 60 km, particulate filter regenerating", nullptr},
        {"410C1A", "(data bytes are missing)", nullptr},
        {"410301", "system 1: open loop, not ready to close", nullptr},
        {"410303", "(a state that the standard does not define)", nullptr},
        {"411303", "bank 1 sensor 1, bank 1 sensor 2", nullptr},
        {"411300", "none", nullptr},
        {"410301FF", "system 1: open loop, not ready to close, a state that the standard does not define",
         nullptr},
        {"41020133", "P0133", nullptr},
        {"41020000", "no freeze frame is stored", nullptr},
        {"42020001330000", "P0133", nullptr},
        {"420C001AF8", "1726.00 rpm", nullptr},
        {"414100026161",
         "Fuel system: complete, Catalyst: not complete, O2 sensor: not complete, "
         "O2 sensor heater: not complete",
         nullptr},
        {"41A600010000", "6553.6 km", "4072.2 mi"},
        {"410320", "system 1: bank 2 open loop, not ready to close", nullptr},
        {"411C0F", "OBD, OBD II, EOBD and KOBD", nullptr},
        {"411C10", "(a state that the standard does not define)", nullptr},
        {"41511C", "dual fuel, diesel and LNG", nullptr},
        {"416B2100320000", "bank 1 sensor 1 -40 ° C, bank 1 sensor 2 160 ° C", nullptr},
        {"416F082020", "turbocharger B inlet 256 kPa", nullptr},
        {"4182010000003CFFFFFFFF0000000000000000000000000000000000000000000000000000000000000000",
         "first device, timer 1 60 s", nullptr},
        {"418A010000", "(data bytes are missing)", nullptr},
        {"418881002000640BB8000000000000",
         "inducement within the current 10,000 km 100 km, driven of the current 10,000 km 3000 km, "
         "inducement 10,000 to 20,000 km ago 0 km, inducement 20,000 to 30,000 km ago 0 km, "
         "inducement 30,000 to 40,000 km ago 0 km, inducement active, now: reagent level too low, "
         "30,000 to 40,000 km ago: incorrect reagent",
         nullptr},
        {"418F0301FF38000000",
         "bank 1 output -2.00 %, bank 1 sensor measuring, bank 1 sensor not regenerating", nullptr},
        {"41900C0010",
         "continuous malfunction indicator 16 h, malfunction indicator: continuous, emission monitors: "
         "complete",
         nullptr},
        {"41920303", "fuel pressure control 1: closed loop, injection quantity control 1: closed loop",
         nullptr},
        {"4194030D0001FFFFFFFFFFFFFFFF",
         "reagent quality counter 1 h, NOx warning active, inducement level 1: active, "
         "inducement level 2: enabled, inducement level 3: inactive",
         nullptr},
        {"419F0180", "bank 1 system A 50.2 %", nullptr},
        {"419F020080000000000000", "bank 1 system B 50.2 %", nullptr},
        {"41A301FFFC000000000000", "pressure A -1.00 Pa", nullptr},
        {"41A4033005DC", "gear ratio 1.500, gear 3", nullptr},
        {"419A010100000000", "charge depleting", nullptr},
        {"41C31234", "(not decoded here)", nullptr},
        {"41C51234", "(not decoded here)", nullptr},
        {"NODATA", "(no answer to this PID)", nullptr},
        {"7F0112", "(no answer to this PID)", nullptr},
        {"410C1", "(no answer to this PID)", nullptr},
    };
    for (const pid_case& c : cases) {
        const QString reply = QString::fromLatin1(c.reply);
        EXPECT_EQ(pid_value_text(read_pid_value(reply, unit_system::metric)), QString::fromUtf8(c.metric))
            << c.reply;
        if (c.imperial) {
            EXPECT_EQ(pid_value_text(read_pid_value(reply, unit_system::imperial)),
                      QString::fromUtf8(c.imperial))
                << c.reply;
        }
    }
}

// A car that tells greatest values scales by them; zero leaves the usual scale.
TEST(standard_reading, scales_of_the_car) {
    full_scales scales;
    take_full_scales(0x4F, QByteArray::fromHex("04104019"), scales);
    take_full_scales(0x50, QByteArray::fromHex("64000000"), scales);
    take_full_scales(0x0C, QByteArray::fromHex("FFFFFFFF"), scales);
    const std::array<const char*, 3> rows[] = {
        {"410B8C", "137 kPa", "140 kPa"},
        {"411003E8", "15.26 g/s", "10.00 g/s"},
        {"41258000C000", "voltage 12.000 V, lambda 2.000", "voltage 6.000 V, lambda 1.000"},
        {"413A80008100", "current 0.500 mA, lambda 2.000", "current 1.000 mA, lambda 1.000"},
        {"41448000", "2.000", "1.000"},
        {"41149A80", "voltage 0.770 V, fuel trim 0.0 %", "voltage 0.770 V, fuel trim 0.0 %"},
        {"41423A98", "15.000 V", "15.000 V"},
    };
    for (const auto& [reply, scaled, usual] : rows) {
        EXPECT_EQ(pid_value_text(read_pid_value(reply, {unit_system::metric, scales})), scaled) << reply;
        EXPECT_EQ(pid_value_text(read_pid_value(reply, unit_system::metric)), usual) << reply;
    }
}

TEST(standard_reading, tells_a_different_reading_from_a_rounded_one) {
    const auto same = [](const char* shown, const char* reply, unit_system units = unit_system::metric) {
        return says_the_same(QString::fromUtf8(shown), read_pid_value(QString::fromLatin1(reply), units));
    };
    EXPECT_TRUE(same("83.0 ° C", "41057B"));
    EXPECT_TRUE(same("37.50 mph", "410D3C", unit_system::imperial));
    EXPECT_TRUE(same("0.770  V / 0.00  %", "41149A80"));
    EXPECT_TRUE(same("1 'Hours' 1 'mins' 1 'secs'", "411F0E4D"));
    EXPECT_TRUE(same("Open Loop - not ready for Close", "410301"));
    EXPECT_TRUE(same("EOBD", "411C06"));
    EXPECT_FALSE(same("12 %", "41300C"));         // a count is no percentage
    EXPECT_FALSE(same("1.500 V", "41423A98"));    // hexadecimal text read as a decimal number
    EXPECT_FALSE(same("232.00 Kms", "413103E8")); // the low byte alone
    EXPECT_FALSE(same("41210064", "41210064"));   // not translated
    EXPECT_FALSE(same("Invalid", "411208"));
    EXPECT_FALSE(same("Reserved", "411C0E"));
    EXPECT_FALSE(same("0.00  KPa", "NODATA")); // a value from nothing
    EXPECT_TRUE(same("N/A", "410C1A"));
}

// A quantity stands once, holds whole bytes, and its support bit is one of the first byte.
TEST(standard_reading, table_is_sound) {
    const quantity_row* before = nullptr;
    for (const quantity_row& row : quantity_rows()) {
        EXPECT_TRUE(row.bytes == 1 || row.bytes == 2 || row.bytes == 4) << row.pid;
        EXPECT_LT(row.support, 8) << row.pid;
        EXPECT_TRUE(row.support == always || row.at > 0) << row.pid;
        if (before) {
            EXPECT_GE(row.pid, before->pid);
            if (row.pid == before->pid) {
                EXPECT_STRNE(row.name, before->name) << row.pid;
                EXPECT_NE(row.at, before->at) << row.pid;
            }
        }
        before = &row;
    }
}

} // namespace brivant
