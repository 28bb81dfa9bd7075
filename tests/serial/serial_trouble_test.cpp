#include "link/serial_trouble.h"
#include "tests/serial/port_bench.h"
#include "tests/support/test_file.h"

#include <QFileInfo>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

// A person who is not the administrator, whoever runs the test.
class as_somebody {
public:
    as_somebody() : was(::geteuid()) { EXPECT_TRUE(was != 0 || ::seteuid(65534) == 0); }
    ~as_somebody() { EXPECT_EQ(::seteuid(was), 0); }

private:
    uid_t was;
};

} // namespace

using serial_trouble = port_bench;

TEST_F(serial_trouble, says_what_is_wrong_with_a_port) {
    const QString file = folder.filePath("file");
    put_file(file);
    const struct {
        QString path;
        QString says;
    } rows[] = {
        {folder.filePath("ttyUSB9"), "%1 is not plugged in. Plug the adapter in, or choose another port."},
        {file, "%1 is no serial port."},
        {folder.path(), "%1 is no serial port."},
        {"/dev/null", "%1 is no serial port."},
    };
    for (const auto& row : rows) {
        choose(row.path);
        EXPECT_EQ(open(), "failed") << row.path.toStdString();
        EXPECT_EQ(reason, QString(row.says).arg(row.path));
        EXPECT_EQ(transport.state(), transport::condition::closed);
    }
}

TEST_F(serial_trouble, names_the_group_and_the_command) {
    pty_adapter adapter;
    const QString device = adapter.plug_in(car_at("can11"));
    const std::string name = device.toStdString();
    const gid_t dialout = 20; // in Debian's base-passwd
    if (::geteuid() != 0 || ::chown(name.c_str(), 0, dialout) != 0)
        GTEST_SKIP() << "only root can give the device to a group";
    choose(device);
    const auto refused = [&](mode_t mode) {
        EXPECT_EQ(::chmod(name.c_str(), mode), 0);
        const as_somebody person;
        EXPECT_EQ(open(), "failed");
        return reason;
    };
    EXPECT_EQ(refused(0660),
              device +
                  " may only be used by the group \"dialout\". Run \"sudo usermod -a -G dialout nobody\", "
                  "then log out and in again.");
    EXPECT_EQ(refused(0600), device + " may only be used by the administrator of this computer.");
    EXPECT_EQ(::chmod(name.c_str(), 0666), 0);
    EXPECT_EQ(open(), "opened");
}

TEST_F(serial_trouble, names_the_program_that_holds_the_port) {
    pty_adapter adapter;
    adapter.set_link(path);
    adapter.plug_in(car_at("can11"));
    serial_transport other(place);
    choose(path);
    other.open();
    EXPECT_TRUE(wait_until([&] { return other.state() == transport::condition::open; }));
    EXPECT_EQ(open(), "failed");
    EXPECT_EQ(reason, path + " is in use by another program, serial_tests. End it, then try again.");
    other.close();
    EXPECT_EQ(open(), "opened");
}

} // namespace brivant
