#include "tests/terminal/cli_process.h"

#include <QDir>
#include <QFile>
#include <memory>
#include <set>

// Each car of the catalogue through the real program: what it reports is what the text of the car file says.

namespace {

struct ecu_facts {
    QString address;
    QStringList codes{};
    QStringList readiness{}; // three bytes
    std::set<int> pids{1};
    QString mil{};
    bool is_engine = false;
};

struct car_facts {
    int protocol = 0;
    QList<ecu_facts> ecus;

    bool is_can() const { return protocol >= 6; }
};

// Reads a car file by itself, without the code of the adapter.
car_facts facts_of(const QString& path) {
    car_facts car;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
        const QStringList words = line.section('#', 0, 0).split(' ', Qt::SkipEmptyParts);
        const QString word = words.value(0);
        if (word == "protocol")
            car.protocol = words[1].toInt();
        if (word == "ecu")
            car.ecus += ecu_facts{words[1]};
        if (car.ecus.isEmpty())
            continue;
        ecu_facts& ecu = car.ecus.last();
        if (word == "code")
            ecu.codes += words.mid(1);
        else if (word == "readiness")
            ecu.readiness = words.mid(1);
        else if (word == "mil")
            ecu.mil = words[1];
        else if (word == "vin")
            ecu.is_engine = true;
        else if (word == "pid")
            ecu.pids.insert(words[1].toInt(nullptr, 16));
    }
    return car;
}

QStringList states_of(const QStringList& bytes) {
    const int b = bytes[0].toInt(nullptr, 16), c = bytes[1].toInt(nullptr, 16),
              d = bytes[2].toInt(nullptr, 16);
    QStringList states;
    const auto add = [&](bool supported, bool incomplete) {
        states += !supported ? "N/A" : incomplete ? "X" : "OK";
    };
    for (int bit = 0; bit < 3; ++bit)
        add(b >> bit & 1, b >> (bit + 4) & 1);
    for (int bit = 0; bit < 8; ++bit)
        add(c >> bit & 1, d >> bit & 1);
    return states;
}

// The PIDs that an ECU reports: those of the file, and 20, 40 ... as far as there are more behind them.
QString reported(std::set<int> pids) {
    for (int group = 0x20; group <= *pids.rbegin(); group += 0x20)
        pids.insert(group);
    QStringList texts;
    for (const int pid : pids)
        texts += QString("%1").arg(pid, 2, 16, QChar('0')).toUpper();
    return texts.join(' ');
}

// On the older protocols a header is three bytes, of which the last is the address.
bool names(const QString& header, const ecu_facts& ecu) {
    return header.endsWith(ecu.address);
}

void check_codes(const QString& name, const car_facts& car, const QJsonObject& result, const QString& said) {
    bool lamp = false, fits = true;
    int announced = 0;
    QStringList listed;
    for (const ecu_facts& ecu : car.ecus) {
        const bool lit = ecu.mil == "on" || (ecu.mil.isEmpty() && !ecu.codes.isEmpty());
        lamp |= lit;
        announced += lit ? int(ecu.codes.size()) : 0;
        // More than two codes need several frames on CAN, and are not all listed.
        const bool in_one_frame = !car.is_can() || ecu.codes.size() <= 2;
        fits &= in_one_frame;
        QStringList codes;
        for (const QJsonValue code : result["codes"].toArray())
            if (names(code["ecu"].toString(), ecu))
                codes += code["code"].toString();
        if (in_one_frame) {
            EXPECT_EQ(codes.join(' '), ecu.codes.join(' ')) << ecu.address.toStdString();
        }
        if (ecu.is_engine) {
            QStringList states;
            for (const QJsonValue row : result["readiness"].toArray())
                states += row["state"].toString();
            EXPECT_EQ(states.join(' '), states_of(ecu.readiness).join(' '));
        }
    }
    EXPECT_EQ(result["ecus"].toInt(), car.ecus.size());
    EXPECT_EQ(result["mil"].toBool(), lamp);
    EXPECT_EQ(result["expected_codes"].toInt(), announced);
    EXPECT_EQ(result["protocol"].toString().contains("CAN"), car.is_can());
    EXPECT_TRUE(said.endsWith(fits ? "Codes read!. Scroll for full description"
                                   : "Codes read...but different no of codes recvd"))
        << name.toStdString() << said.toStdString();
}

void check_pids(const car_facts& car, const QJsonObject& result) {
    const QJsonArray ecus = result["ecus"].toArray();
    EXPECT_EQ(ecus.size(), car.ecus.size());
    for (const QJsonValue found : ecus) {
        const auto ecu = std::find_if(car.ecus.begin(), car.ecus.end(), [&](const ecu_facts& known) {
            return names(found["header"].toString(), known);
        });
        ASSERT_NE(ecu, car.ecus.end()) << found["header"].toString().toStdString();
        QStringList pids;
        for (const QJsonValue pid : found["pids"].toArray())
            pids += pid.toString();
        EXPECT_EQ(pids.join(' '), reported(ecu->pids)) << ecu->address.toStdString();
    }
}

} // namespace

TEST(cars, are_reported_as_their_files_say) {
    const QDir folder(BV_CARS);
    const QStringList files = folder.entryList({"*.car"}, QDir::Files);
    ASSERT_GE(files.size(), 8);
    std::vector<std::unique_ptr<cli_process>> codes, pids;
    for (const QString& file : files) {
        const QString demo = "--demo=" + folder.filePath(file);
        codes.push_back(std::make_unique<cli_process>(QStringList{demo, "--json", "read-codes"}));
        pids.push_back(std::make_unique<cli_process>(QStringList{demo, "--json", "link-info"}));
    }
    for (qsizetype i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(files[i].toStdString());
        const car_facts car = facts_of(folder.filePath(files[i]));
        EXPECT_EQ(codes[size_t(i)]->status(), 0);
        check_codes(files[i], car, codes[size_t(i)]->json(), codes[size_t(i)]->said());
        EXPECT_EQ(pids[size_t(i)]->status(), 0);
        check_pids(car, pids[size_t(i)]->json());
    }
}
