#pragma once

#include "tests/support/faulty_disk.h"
#include "tests/support/print_qt.h"
#include "tests/support/wait_until.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

// One run of the real brivant-cli, in a home of its own. It runs beside the test's event loop, which serves
// the adapters that it talks to.
class cli_process {
public:
    explicit cli_process(const QStringList& arguments, const faulty_disk& disk = {},
                         const QString& input = QProcess::nullDevice()) {
        QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
        for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_DOCUMENTS_DIR"})
            surroundings.remove(variable);
        surroundings.insert("HOME", home.path());
        // The computer's own Bluetooth stays alone.
        if (!surroundings.contains("DBUS_SYSTEM_BUS_ADDRESS"))
            surroundings.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
        disk.surround(surroundings);
        process.setProcessEnvironment(surroundings);
        process.setStandardInputFile(input);
        process.start(BV_CLI, arguments);
    }
    ~cli_process() {
        process.kill();
        process.waitForFinished();
    }

    // Its exit status; -1 when it crashed or does not end within a minute.
    int status() {
        const bool ended = wait_until([this] { return process.state() == QProcess::NotRunning; }, 60000);
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    const QByteArray& out() { return printed = printed + process.readAllStandardOutput(); }
    const QByteArray& progress() { return told = told + process.readAllStandardError(); }
    // The one JSON object on one line that is all of its output.
    QJsonObject json() {
        EXPECT_EQ(out().count('\n'), 1) << out().constData();
        return QJsonDocument::fromJson(out()).object();
    }
    // Everything it said, in the JSON result.
    QString said() {
        QStringList texts;
        for (const QJsonValue text : json()["messages"].toArray())
            texts += text.toString();
        return texts.join('\n');
    }

    QProcess process;
    QTemporaryDir home;

private:
    QByteArray printed;
    QByteArray told;
};

// An adapter on a car of the catalogue, with faults.
class bench_adapter {
public:
    explicit bench_adapter(const QString& car_name = "can11", const virtual_adapter::faults& what = {}) {
        server.set_faults(what);
        QString problem;
        port = server.start(virtual_adapter::load_car(car_name, problem));
        EXPECT_NE(port, 0) << problem.toStdString();
    }
    QStringList link() const { return {"--wifi", "127.0.0.1:" + QString::number(port), "--json"}; }

    virtual_adapter_server server;

private:
    quint16 port = 0;
};

// "P0133 7E8", one for each code of the result.
inline QStringList codes_of(const QJsonObject& result) {
    QStringList codes;
    for (const QJsonValue code : result["codes"].toArray())
        codes += code["code"].toString() + " " + code["ecu"].toString();
    return codes;
}

} // namespace brivant
