#include "tools/virtual_adapter/adapter_connection.h"

#include <QTcpSocket>

namespace virtual_adapter {

namespace {
// A client that sends and never reads is cut off here.
constexpr qint64 most_unsent = 1 << 20;
} // namespace

adapter_connection::adapter_connection(QTcpSocket* socket, std::shared_ptr<car> on,
                                       const adapter_options& options, const faults& what,
                                       adapter_session::observer seen, QObject* parent)
    : QObject(parent), m_socket(socket),
      m_session(
          std::move(on), options, what, std::move(seen), [this](std::string_view text) { write(text); },
          [this] { m_socket->disconnectFromHost(); }) {
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &adapter_connection::read_socket);
    connect(m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
}

void adapter_connection::read_socket() {
    char buffer[1024];
    qint64 count = 0;
    while (m_socket->state() == QAbstractSocket::ConnectedState &&
           (count = m_socket->read(buffer, sizeof buffer)) > 0)
        m_session.take(std::string_view(buffer, std::size_t(count)));
}

void adapter_connection::write(std::string_view text) {
    if (m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    m_socket->write(text.data(), qint64(text.size()));
    m_socket->flush();
    if (m_socket->bytesToWrite() > most_unsent)
        m_socket->abort();
}

} // namespace virtual_adapter
