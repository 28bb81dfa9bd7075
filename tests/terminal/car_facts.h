#pragma once

#include <QFile>
#include <QStringList>
#include <algorithm>
#include <gtest/gtest.h>
#include <set>

// What a car file says, read without the code of the adapter.

struct ecu_facts {
    QString address;
    QStringList codes{};
    QStringList pending{};
    QStringList readiness{}; // three bytes
    QStringList tests{};     // "01 05 10 0050 0000 0064", "01 02 min 0050 0028"
    QList<QStringList> freeze{};
    QString freeze_code{}; // "" without a frame
    QString vin = "N/A";
    std::set<int> pids{1};
    QString mil{};

    // On the older protocols a header is three bytes, of which the last is the address.
    bool is_named_by(const QString& header) const { return header.endsWith(address); }
    bool mil_is_lit() const { return mil == "on" || (mil.isEmpty() && !codes.isEmpty()); }

    // The PIDs that it reports: those of the file, and 20, 40 ... as far as there are more behind them.
    QStringList reported() const {
        std::set<int> all = pids;
        for (int group = 0x20; group <= *pids.rbegin(); group += 0x20)
            all.insert(group);
        QStringList texts;
        for (const int pid : all)
            texts += QString("%1").arg(pid, 2, 16, QChar('0')).toUpper();
        return texts;
    }
};

struct car_facts {
    int protocol = 0;
    QString battery;
    bool has_voltage = true;
    bool has_extras = false;
    QList<ecu_facts> ecus;

    explicit car_facts(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n'))
            take(line.section('#', 0, 0).split(' ', Qt::SkipEmptyParts));
    }
    bool is_can() const { return protocol >= 6; }
    // The one that reports most.
    const ecu_facts& engine() const {
        return *std::max_element(ecus.begin(), ecus.end(),
                                 [](const auto& a, const auto& b) { return a.pids.size() < b.pids.size(); });
    }

private:
    void take(const QStringList& words) {
        const QString word = words.value(0);
        if (word == "protocol")
            protocol = words[1].toInt();
        else if (word == "battery")
            battery = words[1];
        else if (word == "adapter_refuses")
            has_voltage &= words.mid(1).join(' ') != "AT RV";
        else if (word == "ecu")
            ecus += ecu_facts{words[1]};
        else if (!ecus.isEmpty())
            take_of(ecus.last(), word, words.mid(1));
    }
    void take_of(ecu_facts& ecu, const QString& word, const QStringList& rest) {
        if (word == "code")
            ecu.codes += rest;
        else if (word == "pending")
            ecu.pending += rest;
        else if (word == "readiness")
            ecu.readiness = rest;
        else if (word == "mil")
            ecu.mil = rest[0];
        else if (word == "vin")
            ecu.vin = rest[0];
        else if (word == "pid")
            ecu.pids.insert(rest[0].toInt(nullptr, 16));
        else if (word == "freeze_code")
            ecu.freeze_code = rest[0] == "none" ? "" : rest[0];
        else if (word == "freeze")
            ecu.freeze += rest;
        else if (word == "test" || word == "limit")
            ecu.tests += rest.join(' ');
        else if (word == "data")
            has_extras |= rest[0] == "F197";
    }
};
