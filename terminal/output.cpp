#include "terminal/output.h"

#include <cstdio>

namespace brivant {

void print(const QByteArray& text) {
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
}

bool is_all_printed() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void tell(const QString& text) {
    std::fputs(text.toUtf8().constData(), stderr);
}

} // namespace brivant
