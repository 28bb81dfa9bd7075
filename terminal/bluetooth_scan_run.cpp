#include "terminal/bluetooth_scan_run.h"

#include "terminal/output.h"

#include <QJsonArray>
#include <QJsonObject>

namespace brivant {

namespace {

QJsonObject device_as_json(const bluetooth_device& device) {
    QJsonObject found{{QStringLiteral("address"), device.address},
                      {QStringLiteral("name"), device.name},
                      {QStringLiteral("paired"), device.paired},
                      {QStringLiteral("serial_port"), device.serial_port},
                      {QStringLiteral("may_be_adapter"), device.may_be_adapter}};
    if (device.is_le)
        found.insert(QStringLiteral("link"), device.where().text());
    return found;
}

} // namespace

bluetooth_scan_run::bluetooth_scan_run(program_core& its_core)
    : terminal_run(its_core), scanner(its_core.clock) {
    connect(&scanner, &bluetooth_scanner::changed, this, &bluetooth_scan_run::follow);
}

void bluetooth_scan_run::start() {
    on_stop([this] { print_result(false); });
    scanner.start();
}

void bluetooth_scan_run::follow() {
    const QString sentence = scanner.sentence();
    if (sentence != std::exchange(told, sentence) && scanner.now() != bluetooth_scanner::phase::done)
        tell(sentence + QLatin1Char('\n'));
    for (const bluetooth_device& device : scanner.devices()) {
        const QString line = devices_as_text({device});
        if (!listed.contains(line)) {
            listed.insert(line);
            tell(line);
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
        print_json(QJsonObject{{"devices", devices}, {"done", done}, {"messages", QJsonArray{told}}});
    } else {
        print(devices_as_text(scanner.devices()));
    }
    Q_EMIT finished(done ? 0 : 1);
}

QString devices_as_text(const QList<bluetooth_device>& devices) {
    QString text;
    for (const bluetooth_device& device : devices)
        text += QStringLiteral("%1  %2  %3\n")
                    .arg(device.address,
                         device.is_le    ? QStringLiteral("LE        ")
                         : device.paired ? QStringLiteral("paired    ")
                                         : QStringLiteral("not paired"),
                         device.name);
    return text;
}

} // namespace brivant
