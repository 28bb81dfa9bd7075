#pragma once

#include <QByteArray>
#include <QImage>

namespace brivant {

// Vehicle photos as they stand in the database: TIFF bytes, through Qt's TIFF plug-in.

// The photo, scaled down to a width of 270 points when it is wider, its aspect kept. Null bytes for no image,
// and when the plug-in is missing.
QByteArray tiff_of_photo(const QImage& photo);
// The picture in the bytes; none when they hold no TIFF picture, or one of more than 4096 points a side.
QImage photo_of_tiff(const QByteArray& tiff);

} // namespace brivant
