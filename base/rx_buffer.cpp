#include "base/rx_buffer.h"

#include <algorithm>
#include <cstring>

void rx_buffer::append(QByteArrayView bytes) {
    const qsizetype to_head = std::min(bytes.size(), capacity - 1 - head_size);
    std::memcpy(head + head_size, bytes.data(), static_cast<size_t>(to_head));
    head_size += to_head;
    head[head_size] = '\0';

    QByteArrayView rest = bytes.sliced(to_head);
    const qsizetype room = limit - size();
    if (rest.size() > room) {
        cut = true;
        rest = rest.first(room);
    }
    spill.append(rest);
}

void rx_buffer::clear() {
    head_size = 0;
    head[0] = '\0';
    spill.clear();
    cut = false;
}

QByteArray rx_buffer::text() const {
    return QByteArray(head, head_size) + spill;
}
