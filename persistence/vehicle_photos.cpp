#include "persistence/vehicle_photos.h"

#include "base/timed_bytes.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

namespace brivant {

namespace {

constexpr int widest_photo = 270;
constexpr int longest_side = 4096;
constexpr int most_points = 2'000'000; // this program stores at most 270 x 1080
constexpr int longest_ms = 1000;       // decoding is waited for

} // namespace

QByteArray tiff_of_photo(const QImage& photo) {
    if (photo.isNull())
        return {};
    QBuffer tiff;
    tiff.open(QIODevice::WriteOnly);
    QImageWriter writer(&tiff, "tiff");
    const bool written = writer.write(
        photo.width() > widest_photo ? photo.scaledToWidth(widest_photo, Qt::SmoothTransformation) : photo);
    return written ? tiff.data() : QByteArray();
}

QImage photo_of_tiff(const QByteArray& tiff) {
    timed_bytes bytes(tiff, longest_ms);
    // No other decoder is let at bytes from the file.
    QImageReader reader(&bytes, "tiff");
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > longest_side || size.height() > longest_side ||
        size.width() * size.height() > most_points)
        return {};
    const QImage photo = reader.read();
    return bytes.is_over() ? QImage() : photo;
}

} // namespace brivant
