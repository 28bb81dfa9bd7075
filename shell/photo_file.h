#pragma once

#include <QImage>
#include <QString>

namespace brivant {

// A photo that was read from a file, or a sentence that says why there is none.
struct photo_file {
    static constexpr int longest_ms = 5000; // of decoding

    QImage photo;    // upright, and no larger than a screen shows; null when it was refused
    QString problem; // "" when there is a photo

    static photo_file too_slow(const QString& path);
};

// Reads a picture file that the person chose: PNG, JPEG, GIF (its first picture), BMP, WebP or TIFF, told by
// its content. A file that is none of these, that is cut or damaged, of more than 64 MiB, or of more points
// than can be read in a moment is refused before it is decoded. About as slow as showing the picture, and
// broken off when it is not; for any thread.
photo_file read_photo_file(const QString& path);

// The endings of such files, as a file dialog takes them ("*.png *.jpg ...").
QString photo_file_patterns();

} // namespace brivant
