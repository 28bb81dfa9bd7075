#pragma once

#include <QByteArray>

namespace brivant {

// How many times a JPEG file goes over its picture (the scans of ISO/IEC 10918-1): once in an ordinary one,
// about ten times in one that becomes clearer as it loads. Each costs a decoder as much as the picture is
// large, however few bytes it has.
int jpeg_scans(const QByteArray& file);

} // namespace brivant
