#pragma once

#include <QList>
#include <QString>
#include <compare>
#include <optional>

// The number of a version: one to four whole numbers with dots between them, "1.12.0". A number that is left
// out counts as 0.
class version_number {
public:
    // None for other text.
    static std::optional<version_number> of(const QString& text);

    const QString& text() const { return written; }
    std::strong_ordering operator<=>(const version_number& other) const;
    bool operator==(const version_number& other) const { return (*this <=> other) == 0; }

private:
    QString written;
    QList<int> parts;
};
