#include "shell/jpeg_scans.h"

namespace brivant {

namespace {

constexpr uchar start_of_scan = 0xDA;
constexpr uchar end_of_image = 0xD9;

// 00 and the restarts stand within the data of a scan, FF fills up, 01 and the beginning have no length.
bool begins_a_segment(uchar marker) {
    return marker > 0x01 && marker < 0xFF && !(marker >= 0xD0 && marker <= 0xD8);
}

} // namespace

int jpeg_scans(const QByteArray& file) {
    const auto byte = [&file](qsizetype at) {
        return at < file.size() ? static_cast<uchar>(file[at]) : uchar{};
    };
    int scans = 0;
    for (qsizetype at = file.indexOf('\xFF'); at >= 0; at = file.indexOf('\xFF', at)) {
        const uchar marker = byte(++at);
        if (marker == end_of_image)
            break;
        if (!begins_a_segment(marker))
            continue;
        scans += marker == start_of_scan;
        at += 1 + (byte(at + 1) << 8 | byte(at + 2));
    }
    return scans;
}

} // namespace brivant
