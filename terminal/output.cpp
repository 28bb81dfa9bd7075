#include "terminal/output.h"

#include "base/anonymity.h"
#include "base/printable.h"

#include <cstdio>

namespace brivant {

namespace {

// What an adapter, a car or a database from elsewhere has said must not steer the terminal.
void write(QByteArrayView text, FILE* stream) {
    const QByteArray shown = printable(text);
    std::fwrite(shown.constData(), 1, static_cast<size_t>(shown.size()), stream);
}

} // namespace

void print(const QByteArray& text) {
    write(is_anonymous() ? without_vin(QString::fromUtf8(text)).toUtf8() : text, stdout);
}

bool is_all_printed() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void tell(const QString& text) {
    write(text.toUtf8(), stderr);
}

void tell_over(const QString& text) {
    std::fputc('\r', stderr);
    tell(text);
}

} // namespace brivant
