#include "persistence/vehicle_photos.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

namespace brivant {

namespace {

constexpr int widest_photo = 270;
constexpr int longest_side = 4096;

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
    QBuffer bytes;
    bytes.setData(tiff);
    bytes.open(QIODevice::ReadOnly);
    // No other decoder is let at bytes from the file.
    QImageReader reader(&bytes, "tiff");
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > longest_side || size.height() > longest_side)
        return {};
    return reader.read();
}

} // namespace brivant
