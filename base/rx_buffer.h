#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <algorithm>

namespace brivant {

// Adapter text between two prompts. Past `limit` bytes the text is dropped up to the next prompt and the
// reply counts as cut.
class rx_buffer {
public:
    static constexpr qsizetype limit = 8 * 1024;

    void append(QByteArrayView bytes) {
        const qsizetype kept = std::min(bytes.size(), limit - held.size());
        cut = cut || kept < bytes.size();
        held.append(bytes.first(kept));
    }
    void clear() { *this = {}; }

    bool is_empty() const { return held.isEmpty(); }
    qsizetype size() const { return held.size(); }
    // True when text was lost since the last clear(): what is held is not a whole reply.
    bool is_cut() const { return cut; }
    const QByteArray& text() const { return held; }

private:
    QByteArray held;
    bool cut = false;
};

} // namespace brivant
