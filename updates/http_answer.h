#pragma once

#include <QByteArray>
#include <QString>

namespace brivant {

// What a web server answers to one GET, taken apart as it comes (RFC 9112): as much of a head as an honest
// one needs, then a body of a length that is announced, in chunks, or up to the end of the connection.
// Everything else is a problem, after which nothing more is taken.
class http_answer {
public:
    static constexpr qsizetype longest_head = 32 * 1024;
    static constexpr qsizetype most_of_chunks = 700 * 1024; // their sizes, which are no body

    // What of the bytes belongs to the body.
    QByteArray take(const QByteArray& bytes);
    // The connection is closed: a body whose length was not told is whole.
    void end() { is_over |= state == part::body && is_until_the_end(); }

    bool has_head() const { return state != part::head; }
    int status() const { return code; }
    const QByteArray& location() const { return sent_on_to; }
    // -1 where it was not told.
    qint64 announced() const { return body_size; }
    bool is_whole() const { return is_over; }
    // Why it is no answer, "" while it is one.
    const QString& problem() const { return what_is_wrong; }

private:
    enum class part { head, body, chunk_size, chunk, chunk_end, trailer };

    bool is_until_the_end() const { return body_size < 0; }
    bool take_line(QByteArray& line);
    bool take_head_line();
    bool begin_body();
    bool take_field(const QByteArray& name, const QByteArray& value);
    bool take_body(QByteArray& body);
    bool take_chunk_size();
    bool refuse(const char* why);

    part state = part::head;
    QByteArray waiting;
    qsizetype other_bytes = 0; // than those of the body
    int code = 0;
    qint64 body_size = -1;
    qint64 left = 0; // of the body, or of a chunk
    bool is_chunked = false;
    bool is_over = false;
    QByteArray sent_on_to;
    QString what_is_wrong;
};

} // namespace brivant
