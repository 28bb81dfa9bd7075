#include "tools/virtual_adapter/pty_adapter.h"

#include "tools/virtual_adapter/uart.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using virtual_adapter::heard_at;

namespace {

constexpr int client_look_ms = 10;

struct serial_speed {
    int baud;
    speed_t code;
};
constexpr std::array serial_speeds{
    serial_speed{9600, B9600},       serial_speed{19200, B19200},     serial_speed{38400, B38400},
    serial_speed{57600, B57600},     serial_speed{115200, B115200},   serial_speed{230400, B230400},
    serial_speed{460800, B460800},   serial_speed{500000, B500000},   serial_speed{921600, B921600},
    serial_speed{1000000, B1000000}, serial_speed{2000000, B2000000},
};

} // namespace

pty_adapter::pty_adapter(QObject* parent) : QObject(parent) {
    m_no_client.setInterval(client_look_ms);
    connect(&m_no_client, &QTimer::timeout, this, &pty_adapter::look_for_a_client);
}

bool pty_adapter::knows_speed(int baud) {
    for (const serial_speed& speed : serial_speeds)
        if (speed.baud == baud)
            return true;
    return false;
}

QString pty_adapter::plug_in(std::shared_ptr<virtual_adapter::car> on) {
    unplug();
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::array<char, 256> path{};
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0 ||
        ::ptsname_r(m_master, path.data(), path.size()) != 0)
        return fail();
    termios line{};
    if (::tcgetattr(m_master, &line) != 0)
        return fail();
    ::cfmakeraw(&line); // before a client sets it, the terminal would echo and translate
    if (::tcsetattr(m_master, TCSANOW, &line) != 0)
        return fail();
    const QString device = QFile::decodeName(path.data());
    if (!m_link.isEmpty()) {
        QFile::remove(m_link);
        QFile::link(device, m_link);
    }
    m_session = std::make_unique<virtual_adapter::running_session>(
        std::move(on), m_options, m_faults, m_seen, [this](std::string_view text) { write(text); },
        [this] { // the session is in the middle of its work
            QMetaObject::invokeMethod(
                this,
                [this] {
                    unplug();
                    Q_EMIT unplugged();
                },
                Qt::QueuedConnection);
        });
    m_readable = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &pty_adapter::read_bytes);
    return device;
}

QString pty_adapter::fail() {
    m_error = QString::fromLocal8Bit(std::strerror(errno));
    unplug();
    return {};
}

void pty_adapter::unplug() {
    m_no_client.stop();
    m_readable.reset();
    m_session.reset();
    if (m_master < 0)
        return;
    if (!m_link.isEmpty())
        QFile::remove(m_link);
    ::close(m_master);
    m_master = -1;
}

void pty_adapter::read_bytes() {
    std::array<char, 1024> buffer;
    const ssize_t count = ::read(m_master, buffer.data(), buffer.size());
    if (count > 0) {
        const std::string_view sent(buffer.data(), std::size_t(count));
        m_session->take(m_speed == 0 ? std::string(sent) : heard_at(m_speed, sent, client_speed()));
    } else if (count == 0 || errno == EIO) {
        m_readable->setEnabled(false);
        m_no_client.start();
    }
}

void pty_adapter::look_for_a_client() {
    pollfd master{m_master, POLLIN, 0};
    if (::poll(&master, 1, 0) > 0 && (master.revents & POLLHUP) != 0 && (master.revents & POLLIN) == 0)
        return;
    m_no_client.stop();
    m_readable->setEnabled(true);
}

// What nobody reads is lost, as on a serial line.
void pty_adapter::write(std::string_view text) {
    if (m_no_client.isActive())
        return;
    const std::string heard = m_speed == 0 ? std::string(text) : heard_at(client_speed(), text, m_speed);
    for (std::size_t from = 0; from < heard.size();) {
        const ssize_t count = ::write(m_master, heard.data() + from, heard.size() - from);
        if (count <= 0)
            return;
        from += std::size_t(count);
    }
}

int pty_adapter::client_speed() const {
    termios line{};
    if (::tcgetattr(m_master, &line) == 0)
        for (const serial_speed& speed : serial_speeds)
            if (speed.code == ::cfgetospeed(&line))
                return speed.baud;
    return 0;
}
