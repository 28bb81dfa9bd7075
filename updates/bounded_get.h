#pragma once

#include "updates/http_answer.h"

#include <QObject>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>
#include <memory>

namespace brivant {

// How long a server is borne with. What it may take in all is `most_ms`, and beside that what the bytes asked
// for take at the least rate.
struct server_patience {
    int look_ms = 20000;   // as long it may be silent, or slower than the least rate
    int least_rate = 4096; // bytes a second
    int most_ms = 60000;
};

// Asks for one address by https, or by http within this computer, and takes no more of the answer than was
// bargained for: a status other than 200 ends it before its page, and so do a body that is too large or too
// slow. A server may send on to another a few times, never from https to anything else.
class bounded_get : public QObject {
    Q_OBJECT

public:
    explicit bounded_get(const server_patience& how_long, QObject* parent = nullptr);
    ~bounded_get() override;

    // `too_large`: the sentence for a body of more bytes.
    void start(const QUrl& address, qint64 most_bytes, const QString& too_large);
    // Without a further signal.
    void stop();
    bool is_running() const { return socket != nullptr; }

    // Where the answer came from in the end.
    const QUrl& address() const { return asked; }
    // Bytes of the body so far.
    qint64 received() const { return body_bytes; }

Q_SIGNALS:
    void came(const QByteArray& body);
    // Not again for this start. `is_whole`: all that the server had announced has come; else a sentence says
    // why not, or, where the connection was cut in the body, none.
    void ended(bool is_whole, const QString& problem);

private:
    void ask();
    void write_request();
    void take_bytes();
    bool take_head();
    void send_on();
    void look();
    void connection_ended();
    void end(bool is_whole, const QString& problem = {});

    const server_patience patience;
    QTimer looks;
    QTimer deadline;
    QUrl asked;
    qint64 most = 0;
    QString too_large_words;
    int sent_on = 0;
    std::unique_ptr<QSslSocket> socket;
    http_answer answer;
    bool is_first_look = true; // at this body
    qint64 body_bytes = 0;
    qint64 bytes_at_look = 0;
};

} // namespace brivant
