#include "updates/http_answer.h"

#include <QList>
#include <algorithm>
#include <utility>

namespace brivant {

namespace {

constexpr int first_final_status = 200;

// Digits alone; -1 for anything else.
qint64 number_in(const QByteArray& text, int base) {
    bool ok = !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    });
    const qint64 number = ok ? text.toLongLong(&ok, base) : -1;
    return ok ? number : -1;
}

} // namespace

QByteArray http_answer::take(const QByteArray& bytes) {
    waiting += bytes;
    QByteArray body;
    bool goes_on = true;
    while (goes_on && !is_over && what_is_wrong.isEmpty() && !waiting.isEmpty()) {
        QByteArray line;
        switch (state) {
        case part::head: goes_on = take_head_line(); break;
        case part::body:
        case part::chunk: goes_on = take_body(body); break;
        case part::chunk_size: goes_on = take_chunk_size(); break;
        case part::chunk_end:
            goes_on = take_line(line) && (line.isEmpty() || refuse("a chunk is longer than it says"));
            state = goes_on ? part::chunk_size : state;
            break;
        case part::trailer: goes_on = take_line(line); is_over = goes_on && line.isEmpty();
        }
    }
    return body;
}

bool http_answer::take_line(QByteArray& line) {
    const qsizetype end = waiting.indexOf('\n');
    const qsizetype most = has_head() ? most_of_chunks : longest_head;
    if (other_bytes + (end < 0 ? waiting.size() : end) > most)
        return refuse(has_head() ? "its chunks have no end" : "its head has no end");
    if (end < 0)
        return false;
    other_bytes += end + 1;
    line = waiting.first(end).trimmed();
    waiting.remove(0, end + 1);
    return true;
}

bool http_answer::take_head_line() {
    QByteArray line;
    if (!take_line(line))
        return false;
    if (code == 0) {
        const QList<QByteArray> words = line.split(' ');
        code = line.startsWith("HTTP/1.") ? static_cast<int>(number_in(words.value(1), 10)) : -1;
        return (code >= 100 && code <= 999) || refuse("it does not speak HTTP");
    }
    if (line.isEmpty())
        return begin_body();
    const qsizetype colon = line.indexOf(':');
    return colon > 0 ? take_field(line.first(colon).toLower(), line.sliced(colon + 1).trimmed())
                     : refuse("its head is damaged");
}

bool http_answer::take_field(const QByteArray& name, const QByteArray& value) {
    if (name == "location") {
        sent_on_to = value;
    } else if (name == "transfer-encoding") {
        is_chunked = value.toLower() == "chunked";
        return is_chunked || refuse("it is packed in a way that was not asked for");
    } else if (name == "content-length") {
        const qint64 told = number_in(value, 10);
        if (told < 0 || (body_size >= 0 && body_size != told))
            return refuse("it does not say how long it is");
        body_size = told;
    }
    return true;
}

bool http_answer::begin_body() {
    if (code < first_final_status) { // a word on the way
        code = 0;
        return true;
    }
    if (is_chunked)
        body_size = -1;
    left = std::max<qint64>(0, body_size);
    state = is_chunked ? part::chunk_size : part::body;
    is_over = body_size == 0;
    return true;
}

bool http_answer::take_body(QByteArray& body) {
    if (state == part::body && is_until_the_end()) {
        body += std::exchange(waiting, {});
        return true;
    }
    const auto size = static_cast<qsizetype>(std::min<qint64>(left, waiting.size()));
    body += waiting.first(size);
    waiting.remove(0, size);
    left -= size;
    if (left == 0 && state == part::chunk)
        state = part::chunk_end;
    else
        is_over = left == 0 && state == part::body;
    return true;
}

bool http_answer::take_chunk_size() {
    QByteArray line;
    if (!take_line(line))
        return false;
    left = number_in(line.left(line.indexOf(';') < 0 ? line.size() : line.indexOf(';')).trimmed(), 16);
    state = left > 0 ? part::chunk : part::trailer;
    return left >= 0 || refuse("a chunk does not say how long it is");
}

bool http_answer::refuse(const char* why) {
    what_is_wrong = QStringLiteral("What the update server sent is no answer: %1.").arg(QLatin1String(why));
    return false;
}

} // namespace brivant
