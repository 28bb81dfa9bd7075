#include "link/serial_ports.h"
#include "tests/support/print_qt.h"
#include "tests/support/test_file.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

namespace {

// Device files that are plain files, with the links that the system makes to them.
class port_list : public testing::Test {
protected:
    port_list() {
        QDir(root.path()).mkpath("serial/by-id");
        QDir(root.path()).mkpath("serial/by-path");
    }
    QString device(const QString& name) const {
        const QString path = root.filePath(name);
        put_file(path);
        return path;
    }
    QString link(const QString& name, const QString& to) const {
        EXPECT_TRUE(QFile::link("../../" + to, root.filePath("serial/" + name)));
        return root.filePath("serial/" + name);
    }
    QTemporaryDir root;
    const QString links = root.filePath("serial");
};

} // namespace

TEST_F(port_list, names_that_last) {
    const QString named = device("ttyUSB0"), placed = device("ttyUSB1"), bare = device("ttyACM0");
    const QString by_id = link("by-id/usb-FTDI_FT232R_A50285BI-if00-port0", "ttyUSB0");
    const QString by_path = link("by-path/pci-0000:00:14.0-usb-0:1:1.0-port0", "ttyUSB1");
    link("by-path/pci-0000:00:14.0-usb-0:2:1.0-port0", "ttyUSB0");
    link("by-id/usb-gone", "ttyUSB7");
    const QString gone = links + "/by-id/usb-gone";
    for (const auto& [typed, name] : {std::pair(named, by_id),
                                      {placed, by_path},
                                      {bare, bare},
                                      {by_id, by_id},
                                      {gone, gone},
                                      {root.filePath("ttyUSB9"), root.filePath("ttyUSB9")}})
        EXPECT_EQ(stable_port_name(typed, links), name) << typed.toStdString();
    EXPECT_EQ(stable_port_name(named, root.filePath("nowhere")), named);

    const auto list = as_listed({{.path = "/dev/ttyS0"},
                                 {.path = bare, .maker = "Acme", .vendor_id = 0x1234, .product_id = 0x6001},
                                 {.path = "/dev/ttyUSB10", .vendor_id = 0x1A86, .product_id = 0x7523},
                                 {.path = "/dev/ttyUSB9", .vendor_id = 0x0403, .product_id = 0x6015},
                                 {.path = named,
                                  .maker = "FTDI\x1B[2J\n " + QString(500, 'x'),
                                  .product = QString::fromUtf8("FT232R\tUSB UART \u202E"),
                                  .vendor_id = 0x0403,
                                  .product_id = 0x6001}},
                                links);
    QStringList told;
    for (const serial_port& port : list)
        told += port.path + ' ' + port.stable_name + (port.has_adapter_chip ? " chip" : "");
    EXPECT_EQ(told, QStringList({"/dev/ttyUSB9 /dev/ttyUSB9 chip", "/dev/ttyUSB10 /dev/ttyUSB10 chip",
                                 named + ' ' + by_id + " chip", bare + ' ' + bare}));
    EXPECT_EQ(list[2].maker, "FTDI [2J " + QString(51, 'x'));
    EXPECT_EQ(list[2].product, "FT232R USB UART");
    for (const serial_port& port : serial_ports()) // of this computer
        EXPECT_TRUE(port.path.startsWith("/dev/") && !port.stable_name.isEmpty());
}

// The rule for udev lets people use the chips that the list knows, and no others.
TEST(udev_rule, has_the_chips_of_the_list) {
    const QString rule = QString::fromUtf8(bytes_of(BV_TESTS "/../packaging/udev/70-brivant-lite.rules"));
    static const QRegularExpression line(
        "^SUBSYSTEMS==\"usb\", ATTRS\\{idVendor\\}==\"(\\w{4})\", ATTRS\\{idProduct\\}==\"([\\w|]+)\", "
        "ENV\\{BV_ADAPTER_CHIP\\}=\"1\"$",
        QRegularExpression::MultilineOption);
    std::vector<serial_port> chips;
    int vendors = 0;
    for (auto match = line.globalMatch(rule); match.hasNext(); ++vendors) {
        const auto words = match.next();
        for (const QString& product : words.captured(2).split('|'))
            chips.push_back({.path = "/dev/ttyUSB0",
                             .vendor_id = words.captured(1).toInt(nullptr, 16),
                             .product_id = product.toInt(nullptr, 16)});
    }
    EXPECT_EQ(vendors, rule.count("SUBSYSTEMS"));
    EXPECT_EQ(vendors, 4);
    std::size_t known = 0;
    for (int product = 0; product <= 0xFFFF; ++product)
        for (const int vendor : {0x0403, 0x1A86, 0x10C4, 0x067B})
            known += as_listed({{.path = "/dev/ttyUSB0", .vendor_id = vendor, .product_id = product}}, "")
                         .front()
                         .has_adapter_chip;
    EXPECT_EQ(chips.size(), known);
    for (const serial_port& chip : as_listed(chips, ""))
        EXPECT_TRUE(chip.has_adapter_chip) << std::hex << chip.vendor_id << ':' << chip.product_id;
}

} // namespace brivant
