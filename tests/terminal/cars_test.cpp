#include "tests/terminal/cli_process.h"

#include <map>
#include <set>

namespace brivant {

// Each car of the catalogue through the real program, command by command: what it reports is what the car is.

namespace {

using virtual_adapter::car_description;
using virtual_adapter::ecu;

bool is_can(const car_description& car) {
    return car.protocol_number >= 6;
}

// The one that reports most.
const ecu& engine_of(const car_description& car) {
    return *std::max_element(car.ecus.begin(), car.ecus.end(),
                             [](const ecu& a, const ecu& b) { return a.pids.size() < b.pids.size(); });
}

QString hex(unsigned number, int width = 2) {
    return QString("%1").arg(number, width, 16, QChar('0')).toUpper();
}

// On the older protocols a header is three bytes, of which the last is the address.
bool is_of(const QJsonValue& header, const ecu& unit) {
    return header.toString().endsWith(hex(unit.address));
}

// "P0133" as SAE J2012 packs it into two bytes.
QString text_of(unsigned code) {
    return QChar("PCBU"[code >> 14]) + hex(code & 0x3FFF, 4);
}

QStringList texts_of(const std::vector<virtual_adapter::trouble_code>& codes) {
    QStringList texts;
    for (const auto code : codes)
        texts += text_of(code);
    return texts;
}

QStringList codes_of_ecu(const QJsonValue& codes, const ecu& unit) {
    QStringList texts;
    for (const QJsonValue code : codes.toArray())
        if (is_of(code["ecu"], unit))
            texts += code["code"].toString();
    return texts;
}

QStringList words_of(const QJsonValue& rows, const QStringList& keys) {
    QStringList texts;
    for (const QJsonValue row : rows.toArray()) {
        QStringList words;
        for (const QString& key : keys)
            words += row[key].toVariant().toString();
        texts += words.join(' ');
    }
    return texts;
}

void check_codes(const car_description& car, cli_process& run) {
    const QJsonObject result = run.json();
    bool lamp = false, fits = true;
    qsizetype announced = 0;
    for (const ecu& unit : car.ecus) {
        const bool lit = unit.mil.value_or(!unit.codes.empty());
        lamp |= lit;
        announced += lit ? qsizetype(unit.codes.size()) : 0;
        // More than two codes need several frames on CAN, and are not all listed.
        const bool in_one_frame = !is_can(car) || unit.codes.size() <= 2;
        fits &= in_one_frame;
        if (in_one_frame) {
            EXPECT_EQ(codes_of_ecu(result["codes"], unit), texts_of(unit.codes));
        }
    }
    EXPECT_EQ(result["ecus"].toInt(), int(car.ecus.size()));
    EXPECT_EQ(result["mil"].toBool(), lamp);
    EXPECT_EQ(result["expected_codes"].toInt(), announced);
    EXPECT_TRUE(run.said().endsWith(fits ? "Codes read!. Scroll for full description"
                                         : "Codes read...but different no of codes recvd"))
        << run.said().toStdString();
}

// Every PID of every ECU with its value: those of the car, 01, and 20, 40 ... as far as there are more behind
// them.
void check_values(const car_description& car, cli_process& run) {
    const QJsonArray found = run.json()["ecus"].toArray();
    EXPECT_EQ(found.size(), qsizetype(car.ecus.size()));
    for (const ecu& unit : car.ecus) {
        const auto entry = std::find_if(found.begin(), found.end(),
                                        [&](const QJsonValue one) { return is_of(one["header"], unit); });
        ASSERT_NE(entry, found.end()) << unit.address;
        QStringList pids;
        for (const QJsonValue pid : entry->toObject()["values"].toArray()) {
            pids += pid["pid"].toString();
            EXPECT_NE(pid["value"].toString(), "N/A") << pids.last().toStdString();
        }
        std::set<unsigned> expected{0x01};
        for (const auto& [pid, value] : unit.pids)
            expected.insert(pid);
        for (unsigned group = 0x20; group <= *expected.rbegin(); group += 0x20)
            expected.insert(group);
        QStringList texts;
        for (const unsigned pid : expected)
            texts += hex(pid);
        EXPECT_EQ(pids, texts) << unit.address;
    }
}

void check_pending(const car_description& car, cli_process& run) {
    const QJsonObject result = run.json();
    for (const ecu& unit : car.ecus)
        EXPECT_EQ(codes_of_ecu(result["pending"], unit), texts_of(unit.pending));
    const auto& stored = engine_of(car).frame;
    EXPECT_EQ(result["freezed_by"].toString(), stored && stored->code ? text_of(stored->code) : "");
    const QStringList values = words_of(result["freeze"], {"value"});
    EXPECT_EQ(values.size(), stored ? qsizetype(stored->values.size()) : 0);
    EXPECT_FALSE(values.contains("N/A"));
}

// Monitor, test, value, limits and verdict, as the rows of the result should read. Signed units count as
// unsigned.
QString row_of(unsigned monitor, const virtual_adapter::test_record& record) {
    const static std::map<int, double> units{{0x01, 1},    {0x0A, 0.122},    {0x10, 1},   {0x11, 100},
                                             {0x14, 1},    {0x20, 1. / 256}, {0x24, 1},   {0x2F, 0.01},
                                             {0x83, 0.01}, {0xFD, 0.001},    {0xFE, 0.25}};
    const auto scaled = [&](int number) {
        return QString::number(
            QString::number(number * units.at(record.unit_and_scaling), 'f', 3).toDouble());
    };
    const bool passed = record.minimum <= record.value && record.value <= record.maximum;
    return QStringList{hex(monitor),           hex(record.test_id),    scaled(record.value),
                       scaled(record.minimum), scaled(record.maximum), passed ? "true" : "false"}
        .join(' ');
}

QString row_of(unsigned test, const virtual_adapter::limit_record& record) {
    const bool passed = record.is_minimum ? record.value >= record.limit : record.value <= record.limit;
    return QStringList{hex(test),
                       hex(record.component),
                       record.is_minimum ? "min" : "max",
                       QString::number(record.value),
                       QString::number(record.limit),
                       passed ? "true" : "false"}
        .join(' ');
}

void check_tests(const car_description& car, cli_process& run) {
    QStringList expected;
    const auto add = [&](const auto& all) {
        for (const auto& [id, records] : all)
            for (const auto& record : records)
                expected += row_of(id, record);
    };
    add(engine_of(car).monitors);
    add(engine_of(car).test_limits);
    EXPECT_EQ(run.status(), expected.isEmpty() ? 1 : 0);
    QStringList rows =
        words_of(run.json()["tests"],
                 is_can(car) ? QStringList{"obdmid", "tid", "value", "minimum", "maximum", "passed"}
                             : QStringList{"tid", "component", "limit_is", "value", "limit", "passed"});
    expected.sort();
    rows.sort();
    EXPECT_EQ(rows, expected);
}

} // namespace

TEST(cars, are_reported_as_they_are) {
    ASSERT_GE(virtual_adapter::built_in_cars().size(), 9);
    const std::pair<const char*, void (*)(const car_description&, cli_process&)> checks[] = {
        {"read-codes", check_codes},
        {"pending", check_pending},
        {"vehicle-info", check_values},
        {"mode6", check_tests},
    };
    for (const QString& name : virtual_adapter::built_in_cars()) {
        SCOPED_TRACE(name.toStdString());
        QString problem;
        const car_description car = virtual_adapter::load_car(name, problem)->description();
        for (const auto& [command, check] : checks) {
            cli_process run({"--demo=" + name, "--json", "--metric", command});
            run.status();
            check(car, run);
        }
    }
}

TEST(cars, tell_each_command_its_own) {
    const std::tuple<const char*, const char*, qsizetype, QString> rows[] = {
        // command    list     rows  in the first
        {"misfire", "tests", 10, "A1"},
        {"o2-tests", "tests", 21, "01"},
        {"extras", "extras", 16, "1G1JC5444R7252367"},
        {"link-info", "ecus", 2, "7E8"},
    };
    for (const auto& [command, list, count, word] : rows) {
        cli_process run({"--demo", "--json", command});
        EXPECT_EQ(run.status(), 0) << command;
        const QJsonArray found = run.json()[list].toArray();
        EXPECT_EQ(found.size(), count) << command;
        EXPECT_TRUE(QJsonDocument({found.first()}).toJson().contains(word.toUtf8())) << command;
    }
}

} // namespace brivant
