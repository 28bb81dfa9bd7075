#include "link/serial_ports.h"

#include <QDir>
#include <QSerialPortInfo>
#include <algorithm>
#include <iterator>
#include <tuple>

namespace brivant {

namespace {

constexpr qsizetype longest_text = 60;

// As packaging/udev/70-brivant-lite.rules has them.
struct chip {
    int vendor_id;
    int product_id;
};
constexpr chip adapter_chips[] = {
    {0x0403, 0x6001}, {0x0403, 0x6010}, {0x0403, 0x6011}, {0x0403, 0x6014}, {0x0403, 0x6015}, // FTDI
    {0x1A86, 0x5523}, {0x1A86, 0x7522}, {0x1A86, 0x7523}, {0x1A86, 0x55D4}, // CH340, CH341, CH9102
    {0x10C4, 0xEA60},                                                       // CP210x
    {0x067B, 0x2303}, {0x067B, 0x23A3}, {0x067B, 0x23B3}, {0x067B, 0x23C3}, // PL2303
    {0x067B, 0x23D3}, {0x067B, 0x23E3}, {0x067B, 0x23F3},
};

bool is_adapter_chip(const serial_port& port) {
    return std::any_of(std::begin(adapter_chips), std::end(adapter_chips), [&](const chip& known) {
        return known.vendor_id == port.vendor_id && known.product_id == port.product_id;
    });
}

// A device may say anything of itself.
QString cleaned(const QString& told) {
    QString text;
    for (const QChar character : told.left(4 * longest_text))
        text += character.isPrint() ? character : QChar(u' ');
    return text.simplified().left(longest_text);
}

bool is_built_in(const serial_port& port) {
    return port.vendor_id == 0 && port.path.startsWith(QLatin1String("/dev/ttyS"));
}

// ttyUSB10 behind ttyUSB9.
auto order_of(const serial_port& port) {
    return std::tuple(!port.has_adapter_chip, port.path.size(), port.path);
}

} // namespace

QString stable_port_name(const QString& path, const QString& links) {
    const QString device = QFileInfo(path).canonicalFilePath();
    if (device.isEmpty() || path.startsWith(links + u'/'))
        return path;
    for (const char* kind : {"by-id", "by-path"})
        for (const QFileInfo& link :
             QDir(links + u'/' + QLatin1String(kind)).entryInfoList(QDir::Files | QDir::System, QDir::Name))
            if (link.canonicalFilePath() == device)
                return link.absoluteFilePath();
    return path;
}

std::vector<serial_port> as_listed(std::vector<serial_port> told, const QString& links) {
    told.erase(std::remove_if(told.begin(), told.end(), is_built_in), told.end());
    for (serial_port& port : told) {
        port.stable_name = stable_port_name(port.path, links);
        port.maker = cleaned(port.maker);
        port.product = cleaned(port.product);
        port.has_adapter_chip = is_adapter_chip(port);
    }
    std::sort(told.begin(), told.end(),
              [](const serial_port& a, const serial_port& b) { return order_of(a) < order_of(b); });
    return told;
}

std::vector<serial_port> serial_ports() {
    std::vector<serial_port> told;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        told.push_back({.path = port.systemLocation(),
                        .maker = port.manufacturer(),
                        .product = port.description(),
                        .vendor_id = port.vendorIdentifier(),
                        .product_id = port.productIdentifier()});
    return as_listed(std::move(told));
}

} // namespace brivant
