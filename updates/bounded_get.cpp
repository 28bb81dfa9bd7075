#include "updates/bounded_get.h"

#include "updates/version_file.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace brivant {

namespace {

constexpr int most_redirects = 4;
constexpr int good_status = 200;
constexpr qint64 buffer_size = 64 * 1024;
constexpr int kernel_buffer_size = 128 * 1024; // what comes unasked stays with the server

const QString https = QStringLiteral("https");

} // namespace

bounded_get::bounded_get(const server_patience& how_long, QObject* parent)
    : QObject(parent), patience(how_long) {
    looks.setInterval(patience.look_ms);
    deadline.setSingleShot(true);
    connect(&looks, &QTimer::timeout, this, &bounded_get::look);
    connect(&deadline, &QTimer::timeout, this,
            [this] { end(false, QStringLiteral("The update server takes too long. Try again later.")); });
}

bounded_get::~bounded_get() {
    stop();
}

void bounded_get::start(const QUrl& address, qint64 most_bytes, const QString& too_large) {
    stop();
    asked = address;
    most = most_bytes;
    too_large_words = too_large;
    sent_on = 0;
    const qint64 in_all = patience.most_ms + 1000 * most / patience.least_rate;
    deadline.start(static_cast<int>(std::min<qint64>(in_all, std::numeric_limits<int>::max())));
    ask();
}

void bounded_get::stop() {
    looks.stop();
    deadline.stop();
    if (!socket)
        return;
    socket->disconnect(this);
    socket->abort();
    socket.release()->deleteLater(); // it may be its signal that led here
}

void bounded_get::ask() {
    answer = {};
    body_bytes = bytes_at_look = 0;
    is_first_look = true;
    socket = std::make_unique<QSslSocket>();
    socket->setReadBufferSize(buffer_size);
    const bool is_safe = asked.scheme() == https;
    connect(socket.get(), &QAbstractSocket::connected, this, [this] {
        socket->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, kernel_buffer_size);
    });
    if (is_safe)
        connect(socket.get(), &QSslSocket::encrypted, this, &bounded_get::write_request);
    else
        connect(socket.get(), &QAbstractSocket::connected, this, &bounded_get::write_request);
    connect(socket.get(), &QIODevice::readyRead, this, &bounded_get::take_bytes);
    connect(socket.get(), &QAbstractSocket::errorOccurred, this, &bounded_get::connection_ended);
    looks.start();
    if (is_safe)
        socket->connectToHostEncrypted(asked.host(), static_cast<quint16>(asked.port(443)));
    else
        socket->connectToHost(asked.host(), static_cast<quint16>(asked.port(80)));
}

void bounded_get::write_request() {
    const QByteArray path = asked.path(QUrl::FullyEncoded).toLatin1();
    const QByteArray query = asked.query(QUrl::FullyEncoded).toLatin1();
    socket->write("GET " + (path.isEmpty() ? QByteArray("/") : path) +
                  (query.isEmpty() ? QByteArray() : "?" + query) +
                  " HTTP/1.1\r\nHost: " + asked.authority(QUrl::FullyEncoded).toLatin1() +
                  "\r\nUser-Agent: brivant-lite\r\nAccept: */*\r\nAccept-Encoding: identity\r\n"
                  "Connection: close\r\n\r\n");
}

void bounded_get::take_bytes() {
    while (socket && socket->bytesAvailable() > 0) {
        const bool had_head = answer.has_head();
        const QByteArray body = answer.take(socket->read(buffer_size));
        if (!answer.problem().isEmpty())
            return end(false, answer.problem());
        if (!had_head && answer.has_head() && !take_head())
            return;
        body_bytes += body.size();
        if (body_bytes > most)
            return end(false, too_large_words);
        if (!body.isEmpty())
            Q_EMIT came(body);
        if (socket && answer.is_whole())
            return end(true);
    }
}

// False when nothing of the body is wanted.
bool bounded_get::take_head() {
    const int status = answer.status();
    if (status / 100 == 3 && !answer.location().isEmpty())
        send_on();
    else if (status != good_status)
        end(false, QStringLiteral("The update server answered with the status %1.").arg(status));
    else if (answer.announced() > most)
        end(false, too_large_words);
    else
        return true;
    return false;
}

void bounded_get::send_on() {
    const QUrl next = asked.resolved(QUrl(QString::fromLatin1(answer.location()), QUrl::StrictMode));
    const bool is_safe = may_be_asked(next) && (asked.scheme() != https || next.scheme() == https);
    if (!is_safe)
        return end(false,
                   QStringLiteral("The update server sends on to %1, which is not asked: only https is.")
                       .arg(next.toDisplayString(QUrl::RemoveUserInfo).left(100)));
    if (++sent_on > most_redirects)
        return end(false,
                   QStringLiteral("The update server sends on to another address again and again, more "
                                  "than %1 times.")
                       .arg(most_redirects));
    socket->disconnect(this);
    socket->abort();
    socket.release()->deleteLater();
    asked = next;
    ask();
}

void bounded_get::look() {
    if (!answer.has_head())
        return end(false,
                   QStringLiteral("The update server does not answer. Check the connection to the internet "
                                  "and try again."));
    const qint64 needed = qint64{patience.least_rate} * patience.look_ms / 1000;
    if (!std::exchange(is_first_look, false) && body_bytes - bytes_at_look < needed)
        return end(false,
                   QStringLiteral("The update server sends too slowly, and was not waited for. Try again "
                                  "later."));
    bytes_at_look = body_bytes;
}

void bounded_get::connection_ended() {
    const QString why = socket->errorString();
    const bool is_closed = socket->error() == QAbstractSocket::RemoteHostClosedError;
    take_bytes();
    if (!socket)
        return;
    answer.end();
    const bool has_begun = answer.has_head() && is_closed;
    end(answer.is_whole() && is_closed,
        has_begun ? QString() : QStringLiteral("The update server could not be asked: %1.").arg(why));
}

void bounded_get::end(bool is_whole, const QString& problem) {
    stop();
    Q_EMIT ended(is_whole, problem);
}

} // namespace brivant
