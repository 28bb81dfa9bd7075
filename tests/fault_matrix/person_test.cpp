#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"
#include "tests/fault_matrix/matrix_bench.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace brivant {

// Answers that are refused, damaged or late, judged as a person would: what is shown is right, or marked, or
// a sentence tells what is not there; and that soon.

namespace {

struct reading_row {
    const char* name;
    void (readCodes::*start)();
    QList<part> parts;
};
const reading_row readings[] = {
    {"codes", &readCodes::l_readCodes, {part::codes}},
    {"pending", &readCodes::readPendingFreezeCodes, {part::pending, part::freeze}},
    {"vehicle", &readCodes::readVehicleInfo, {part::vehicle}},
    {"mode 6", &readCodes::readMode6Support, {part::mode6}},
    {"O2", &readCodes::readO2, {part::o2}},
};
constexpr const char* cars[] = {"can11", "kwp"};
constexpr int patience_ms = 20000;

// What becomes of each line of a reply, without its "\r".
using mishap = std::function<QString(const QString& line)>;

in_process_adapter::piece after(const std::string& said, const mishap& what) {
    QStringList lines = QString::fromStdString(said).split('\r');
    for (QString& line : lines)
        line = what(line);
    return {lines.join('\r').toStdString()};
}

struct seen {
    QStringList values; // "codes P0133|7E8"
    bool is_told = false;
    QString wrong; // a value that is not the car's and is not marked
    QString ended;
    int spent_ms = 0;
};

seen run(const char* car, const reading_row& what, const mishap& happens, const QStringList& clean) {
    matrix_bench bench(steady_car(car));
    bench.adapter->trouble = [&happens](const std::string& said) {
        return std::vector{after(said, happens)};
    };
    bench.begin(bench.diagnostics);
    (bench.diagnostics.*what.start)();
    seen made;
    EXPECT_TRUE(bench.pump());
    made.ended = bench.ended;
    made.spent_ms = bench.spent();
    made.is_told = bench.ended != "done";
    for (const part each : what.parts) {
        const second_reading reading(each, bench.results, bench.toolies);
        made.is_told |= !reading.faults().isEmpty() ||
                        row_texts(each, bench.results.rows(each)).filter("Not ").size() > 0;
        for (const noted_row& row : reading.shown()) {
            const auto* value = std::get_if<value_row>(&row.row);
            if (std::holds_alternative<words_row>(row.row) || std::holds_alternative<ecu_row>(row.row) ||
                (value && value->label == "No of ECUS")) // of those that answered
                continue;
            const QString text =
                row_text(each, row.row).remove(QRegularExpression("^\\d+\\|(?=OBDMID|Test)"));
            made.values += text;
            made.is_told |= !clean.isEmpty() && !clean.contains(text) && text.contains("N/A");
            if (!clean.isEmpty() && row.note.isEmpty() && !clean.contains(text) && !text.contains("N/A"))
                made.wrong = text;
        }
    }
    const second_status status = read_status_again(bench.results, bench.toolies);
    if (status.was_read) {
        made.is_told |= !status.faults.isEmpty();
        made.values += QString("MIL %1 %2").arg(status.own.mil).arg(status.own.codes);
        if (status.faults.isEmpty() && !clean.isEmpty() && !clean.contains(made.values.last()))
            made.wrong = made.values.last();
    }
    return made;
}

class truth {
public:
    truth(const char* its_car, const reading_row& its_reading)
        : car(its_car), reading(its_reading),
          clean(run(car, reading, [](const QString& line) { return line; }, {})) {}

    void must_hold(const mishap& happens, const QString& name, int extra_ms = 0) const {
        const seen made = run(car, reading, happens, clean.values);
        const QString where = QString("%1, %2, %3: ").arg(car, reading.name, name);
        const bool all_there = std::all_of(clean.values.begin(), clean.values.end(),
                                           [&](const QString& value) { return made.values.contains(value); });
        EXPECT_TRUE(all_there || made.is_told) << where.toStdString() << "missing without a word";
        EXPECT_EQ(made.wrong, "") << where.toStdString();
        EXPECT_LE(made.spent_ms, clean.spent_ms + patience_ms + extra_ms) << where.toStdString();
    }

private:
    const char* car;
    const reading_row& reading;
    const seen clean;
};

QString plain(QString line) {
    return line.remove(' ');
}

} // namespace

TEST(person, is_told_what_one_ECU_refuses) {
    for (const reading_row& reading : readings) {
        const truth can("can11", reading), kwp("kwp", reading);
        for (const char* service : {"01", "02", "03", "06", "07", "09"}) {
            if (reading.parts.first() == part::vehicle && QString(service) == "01")
                continue; // an ECU that does not even say what it supports is none of those that are counted
            const QString positive = QString::number(QString(service).toInt(nullptr, 16) + 0x40, 16);
            for (const char* ecu : {"7E8", "7E9"})
                can.must_hold(
                    [&, drops = std::make_shared<bool>(false)](const QString& line) {
                        const QString digits = plain(line);
                        if (!digits.startsWith(ecu))
                            return line;
                        if (digits.mid(3, 1) == "2" && *drops)
                            return QString();
                        const bool is_long = digits.mid(3, 1) == "1";
                        *drops = digits.mid(is_long ? 7 : 5, 2) == positive;
                        return *drops ? QString("%1 03 7F %2 22 ").arg(ecu, service) : line;
                    },
                    QString("%1 refuses %2").arg(ecu, service));
            for (const char* ecu : {"F110", "F118"})
                kwp.must_hold(
                    [&](const QString& line) {
                        const QString digits = plain(line);
                        return digits.mid(2, 4) == ecu && digits.mid(6, 2) == positive
                                   ? QString("83 %1 7F %2 22 00 ").arg(ecu, service)
                                   : line;
                    },
                    QString("%1 refuses %2").arg(ecu, service));
        }
    }
}

TEST(person, is_told_of_a_damaged_frame) {
    for (const reading_row& reading : readings)
        for (const char* car : cars) {
            const truth with(car, reading);
            for (int frame = 1; frame <= 24; ++frame)
                with.must_hold(
                    [&, count = std::make_shared<int>(0)](const QString& line) {
                        const QString digits = plain(line);
                        const bool is_engines = digits.startsWith("7E8") || digits.mid(2, 4) == "F110";
                        if (!is_engines || ++*count < frame + 8 || *count > frame + 11)
                            return line; // four tries of the same
                        return line.left(line.size() / 2) + "<DATA ERROR";
                    },
                    QString("frame %1 damaged").arg(frame));
        }
}

// Nothing is lost to a search that takes longer than the time-out of the request that began it.
TEST(person, waits_for_a_long_search) {
    for (const int seconds : {13, 20, 35}) {
        matrix_bench bench(steady_car("can11"));
        bench.adapter->trouble = [seconds](const std::string& said) {
            const auto searching = said.find("SEARCHING");
            if (searching == std::string::npos)
                return std::vector<in_process_adapter::piece>{{said}};
            const auto end = said.find('\r', searching) + 1;
            return std::vector<in_process_adapter::piece>{{said.substr(0, end)},
                                                          {said.substr(end), seconds * 1000}};
        };
        bench.begin(bench.diagnostics);
        bench.diagnostics.l_readCodes();
        EXPECT_TRUE(bench.pump());
        EXPECT_EQ(bench.ended, "done") << seconds;
        EXPECT_EQ(bench.adapter->commands.count("0100"), 2) << "never sent anew, " << seconds;
        EXPECT_LE(bench.spent(), (seconds + 3) * 1000);
    }
}

TEST(person, is_told_that_the_car_is_gone) {
    for (const reading_row& reading : readings)
        for (const char* car : cars) {
            const truth with(car, reading);
            for (const char* word : {"NO DATA", "CAN ERROR", "UNABLE TO CONNECT"})
                for (int answer = 1; answer <= 40; answer += 3)
                    with.must_hold(
                        [&, count = std::make_shared<int>(0)](const QString& line) {
                            const QString digits = plain(line);
                            const bool is_cars = digits.startsWith("7E") || digits.mid(2, 2) == "F1";
                            if (!is_cars || ++*count < answer)
                                return line;
                            return QString(word);
                        },
                        QString("%1 from answer %2 on").arg(word).arg(answer));
        }
}

} // namespace brivant
