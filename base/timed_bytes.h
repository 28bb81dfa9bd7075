#pragma once

#include <QDeadlineTimer>
#include <QIODevice>
#include <algorithm>
#include <cstring>

namespace brivant {

// Bytes that can be read for a time only: afterwards every reading fails. For decoders that cannot be stopped
// otherwise.
class timed_bytes : public QIODevice {
public:
    timed_bytes(const QByteArray& what, int ms) : bytes(what), deadline(ms) {
        QIODevice::open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool is_over() const { return deadline.hasExpired(); }
    qint64 size() const override { return bytes.size(); }

protected:
    qint64 readData(char* to, qint64 most) override {
        if (is_over())
            return -1;
        const qint64 size = std::clamp<qint64>(bytes.size() - pos(), 0, most);
        std::memcpy(to, bytes.constData() + pos(), static_cast<size_t>(size));
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray bytes;
    const QDeadlineTimer deadline;
};

} // namespace brivant
