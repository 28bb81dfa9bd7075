#pragma once

#include <QFile>
#include <gtest/gtest.h>

namespace brivant {

// A test's look into a file: its bytes, or "none" where there is no such file.
inline QByteArray bytes_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

// In a folder that is there.
inline void put_file(const QString& path, const QByteArray& bytes = {}) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

} // namespace brivant
