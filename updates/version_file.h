#pragma once

#include <QByteArray>
#include <QUrl>
#include <QVersionNumber>
#include <optional>

namespace brivant {

// What an update server tells, in a JSON file named "version.json" in the folder that the settings name:
//
//   {"version": "1.2.0",
//    "archive": "brivant-lite-1.2.0.tar.xz",
//    "size": 12345678,
//    "sha256": "64 hexadecimal digits of the archive"}
//
// The archive lies beside the file, or below it ("1.2/brivant-lite-1.2.0-amd64.tar.xz"); its last part, which
// holds the version as the file writes it, is the name it is kept under. Other members are left alone.
struct version_file {
    static constexpr qint64 largest = 64 * 1024;
    static constexpr qint64 largest_archive = qint64{1} << 30;

    QVersionNumber version; // of one to four numbers
    QUrl archive;           // resolved against the address of the file
    QString archive_name;   // "brivant-lite-1.2.0.tar.xz"
    qint64 size = 0;
    QByteArray sha256; // 32 bytes

    // `address`: where the file came from. None, and a sentence in `problem`, when it is not such a file.
    static std::optional<version_file> of(const QByteArray& json, const QUrl& address, QString& problem);
};

// True for the addresses that are asked at all: https, and http within this computer.
bool may_be_asked(const QUrl& address);
// What is wrong with the text as the address of an update server, "" when nothing is.
QString update_server_problem(const QString& text);
// The address of the version file of a server.
QUrl version_file_address(const QString& server);

} // namespace brivant
