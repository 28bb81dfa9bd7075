#pragma once

#include <QJsonDocument>

namespace brivant {

// Results go to standard output, everything else that is told to standard error, both with control characters
// escaped: see printable().

void print(const QByteArray& text);
inline void print(const QString& text) {
    print(text.toUtf8());
}
// On one line.
template <class json>
QByteArray compact(const json& value) {
    return QJsonDocument(value).toJson(QJsonDocument::Compact);
}
template <class json>
void print_json(const json& value) {
    print(compact(value) + '\n');
}
// What was printed is where it belongs. False from the first text on that could not be written.
bool is_all_printed();

void tell(const QString& text);
// In the place of the line that was told last.
void tell_over(const QString& text);

} // namespace brivant
