#pragma once

#include <QByteArray>
#include <QByteArrayView>

// Adapter text between two prompts. The first 300 bytes (terminator included) have a fixed place; what
// does not fit goes on in a spill, since a long service 06 answer is larger than that. Both together are
// bounded: past `limit` bytes the text is dropped up to the next prompt and the reply counts as cut.
class rx_buffer {
public:
    static constexpr qsizetype capacity = 300;
    static constexpr qsizetype limit = 8 * 1024;

    void append(QByteArrayView bytes);
    void clear();

    bool is_empty() const { return head_size == 0; }
    qsizetype size() const { return head_size + spill.size(); }
    // True when text was lost since the last clear(): what is held is not a whole reply.
    bool is_cut() const { return cut; }
    QByteArray text() const;

private:
    char head[capacity] = {};
    qsizetype head_size = 0;
    QByteArray spill;
    bool cut = false;
};
