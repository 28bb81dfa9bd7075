#pragma once

#include <QByteArray>

namespace brivant {

enum class line_feeds { kept, escaped };

// A text in UTF-8 of which nothing steers the terminal that shows it: control characters (C0 but for the tab,
// DEL, C1) and those that turn the direction of writing stand as "\r", "\n" or "\u001b", which is what JSON
// calls them, too. What is no UTF-8 becomes U+FFFD.
QByteArray printable(QByteArrayView text, line_feeds feeds = line_feeds::kept);

} // namespace brivant
