#include "shell/photo_file.h"

#include "base/timed_bytes.h"
#include "shell/jpeg_scans.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace brivant {

namespace {

constexpr qint64 largest_file = 64LL * 1024 * 1024;
constexpr int longest_side = 16384;
constexpr qint64 most_points = 16'000'000;       // decoded whole
constexpr qint64 most_jpeg_points = 128'000'000; // decoded at a fraction of its size
constexpr int most_scans = 60;
constexpr qint64 most_scanned_points = 640'000'000; // in all scans of a JPEG
constexpr QSize kept_size{1080, 1080};

const QByteArray jpeg("jpeg");

bool is_read(const QByteArray& format) {
    static const QList<QByteArray> formats{"png", jpeg, "gif", "bmp", "webp", "tiff"};
    return formats.contains(format);
}

photo_file refused(const QString& path, const QString& why) {
    return {QImage(), QStringLiteral("%1 %2").arg(QFileInfo(path).fileName().left(80), why)};
}

QString what_is_wrong_with(const QFileInfo& file) {
    if (!file.exists())
        return QStringLiteral("does not exist.");
    if (!file.isFile()) // a pipe would be waited for
        return QStringLiteral("is no file.");
    if (!file.isReadable())
        return QStringLiteral("cannot be read: check its rights.");
    if (file.size() > largest_file)
        return QStringLiteral("is too large: a picture file has at most 64 MiB.");
    return {};
}

QString what_is_wrong_with(const QSize& size, const QByteArray& format, const QByteArray& bytes) {
    if (size.isEmpty())
        return QStringLiteral("is damaged: it does not say how large its picture is.");
    const qint64 points = static_cast<qint64>(size.width()) * size.height();
    if (size.width() > longest_side || size.height() > longest_side ||
        points > (format == jpeg ? most_jpeg_points : most_points))
        return QStringLiteral("has too many points (%1 x %2): make the picture smaller.")
            .arg(size.width())
            .arg(size.height());
    const int scans = format == jpeg ? jpeg_scans(bytes) : 0;
    if (scans > most_scans || scans * points > most_scanned_points)
        return QStringLiteral("goes over its picture too often (%1 times): save it as an ordinary JPEG.")
            .arg(scans);
    return {};
}

} // namespace

photo_file photo_file::too_slow(const QString& path) {
    return refused(path, QStringLiteral("takes too long to read, and was not waited for."));
}

photo_file read_photo_file(const QString& path) {
    if (const QString wrong = what_is_wrong_with(QFileInfo(path)); !wrong.isEmpty())
        return refused(path, wrong);
    QFile file(path);
    const QByteArray content =
        file.open(QIODevice::ReadOnly) ? file.read(largest_file) : QByteArray(); // it may have grown since
    timed_bytes bytes(content, photo_file::longest_ms);
    QImageReader reader(&bytes);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (!is_read(format))
        return refused(path,
                       QStringLiteral("is no picture that can be read here: PNG, JPEG, GIF, BMP, WebP and "
                                      "TIFF are."));
    const QSize size = reader.size();
    if (const QString wrong = what_is_wrong_with(size, format, content); !wrong.isEmpty())
        return refused(path, wrong);
    if (size.width() > kept_size.width() || size.height() > kept_size.height())
        reader.setScaledSize(size.scaled(kept_size, Qt::KeepAspectRatio).expandedTo({1, 1}));
    const QImage photo = reader.read();
    if (bytes.is_over()) // what there is may be a part of it
        return photo_file::too_slow(path);
    if (photo.isNull())
        return refused(path, QStringLiteral("is damaged or cut short."));
    return {photo, {}};
}

QString photo_file_patterns() {
    return QStringLiteral("*.png *.jpg *.jpeg *.gif *.bmp *.webp *.tif *.tiff");
}

} // namespace brivant
