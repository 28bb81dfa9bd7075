#include "terminal/bluetooth_scan_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace {

void print(FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

QJsonObject device_as_json(const bluetooth_device& device) {
    return {{QStringLiteral("address"), device.address},
            {QStringLiteral("name"), device.name},
            {QStringLiteral("paired"), device.paired},
            {QStringLiteral("serial_port"), device.serial_port}};
}

} // namespace

bluetooth_scan_run::bluetooth_scan_run(program_core& its_core) : core(its_core), scanner(its_core.clock) {
    connect(&scanner, &bluetooth_scanner::changed, this, &bluetooth_scan_run::follow);
}

void bluetooth_scan_run::start() {
    signals_ = std::make_unique<stop_signals>([this] { print_result(false); });
    scanner.start();
}

void bluetooth_scan_run::follow() {
    const QString sentence = scanner.sentence();
    if (sentence != std::exchange(told, sentence) && scanner.now() != bluetooth_scanner::phase::done)
        print(stderr, sentence + QLatin1Char('\n'));
    for (const bluetooth_device& device : scanner.devices()) {
        const QString line = devices_as_text({device});
        if (!listed.contains(line)) {
            listed.insert(line);
            print(stderr, line);
        }
    }
    if (scanner.now() == bluetooth_scanner::phase::done)
        print_result(true);
    else if (scanner.now() == bluetooth_scanner::phase::unusable)
        print_result(false);
}

void bluetooth_scan_run::print_result(bool done) {
    scanner.stop();
    if (core.options.json) {
        QJsonArray devices;
        for (const bluetooth_device& device : scanner.devices())
            devices += device_as_json(device);
        const QJsonObject result{{QStringLiteral("devices"), devices},
                                 {QStringLiteral("done"), done},
                                 {QStringLiteral("messages"), QJsonArray{told}}};
        print(stdout,
              QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Compact)) + QLatin1Char('\n'));
    } else {
        print(stdout, devices_as_text(scanner.devices()));
    }
    Q_EMIT finished(done ? 0 : 1);
}

QString devices_as_text(const QList<bluetooth_device>& devices) {
    QString text;
    for (const bluetooth_device& device : devices)
        text += QStringLiteral("%1  %2  %3\n")
                    .arg(device.address,
                         device.paired ? QStringLiteral("paired    ") : QStringLiteral("not paired"),
                         device.name);
    return text;
}
