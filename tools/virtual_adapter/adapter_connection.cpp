#include "tools/virtual_adapter/adapter_connection.h"

#include <QTcpSocket>

namespace virtual_adapter {

namespace {

// A client that sends and never reads is cut off here.
constexpr qint64 most_unsent = 1 << 20;
constexpr std::size_t most_waiting = 1000;

} // namespace

adapter_connection::adapter_connection(QTcpSocket* socket, std::shared_ptr<car> on,
                                       const adapter_options& options, const faults& what, observer seen,
                                       QObject* parent)
    : QObject(parent), m_socket(socket), m_adapter(std::move(on), options), m_faults(what),
      m_seen(std::move(seen)) {
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_adapter.refuse(what.refused);
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (!m_outbox.empty())
            m_outbox.front().wait_ms = 0;
        send_due();
    });
    connect(m_socket, &QTcpSocket::readyRead, this, &adapter_connection::read_socket);
    connect(m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
}

void adapter_connection::read_socket() {
    char buffer[1024];
    qint64 count = 0;
    while (m_socket->state() == QAbstractSocket::ConnectedState &&
           (count = m_socket->read(buffer, sizeof buffer)) > 0)
        for (qint64 i = 0; i < count; ++i)
            take(buffer[i]);
}

void adapter_connection::take(char character) {
    const bool ignored = character == '\n' || character == '\0';
    if (!m_outbox.empty() && m_outbox.back().interruptible && !ignored) {
        interrupt(); // the character itself is lost
        return;
    }
    const std::optional<exchange> done = m_adapter.take(character);
    if (!done)
        return;
    if (m_seen)
        m_seen(*done);
    deliver(m_faults.pass(*done));
}

void adapter_connection::interrupt() {
    m_outbox.pop_back();
    if (m_outbox.empty())
        m_timer.stop();
    delivery stopped;
    stopped.text = m_adapter.stopped();
    deliver(std::move(stopped));
}

void adapter_connection::deliver(delivery what) {
    if (!what.at_once.empty()) {
        delivery first;
        first.text.swap(what.at_once);
        deliver(std::move(first));
    }
    m_outbox.push_back(std::move(what));
    if (m_outbox.size() > most_waiting)
        m_socket->abort();
    send_due();
}

// Everything up to the next delivery that has to wait.
void adapter_connection::send_due() {
    while (!m_timer.isActive() && !m_outbox.empty()) {
        delivery& first = m_outbox.front();
        if (first.wait_ms > 0) {
            m_timer.start(first.wait_ms);
            return;
        }
        first.interruptible = false;
        if (m_faults.what().split && first.text.size() > 1) {
            write(first.text.substr(0, 1));
            first.text.erase(0, 1);
            m_timer.start(0);
            return;
        }
        const delivery due = std::move(first);
        m_outbox.pop_front();
        write(due.text);
        if (due.close) {
            m_outbox.clear();
            m_socket->disconnectFromHost();
        }
    }
}

void adapter_connection::write(std::string_view text) {
    if (text.empty() || m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    m_socket->write(text.data(), qint64(text.size()));
    m_socket->flush();
    if (m_socket->bytesToWrite() > most_unsent)
        m_socket->abort();
}

} // namespace virtual_adapter
