#include "updates/version_file.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <cmath>

namespace brivant {

namespace {

constexpr qsizetype longest_address = 2000;
constexpr qsizetype sha256_size = 32;

bool matches(const QString& pattern, const QString& text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

// Below the folder of the version file, under a name that tells the version and cannot be that of another
// file of the person's.
bool is_archive_path(const QString& path, const QString& version) {
    return path.size() <= 200 && !path.contains(QLatin1String("..")) &&
           matches(
               QStringLiteral("([A-Za-z0-9_-][A-Za-z0-9._+-]*/)*brivant-lite[-_]%1([_+-][A-Za-z0-9._+-]*)?"
                              "\\.(tar\\.(xz|gz|bz2|zst)|zip|deb)")
                   .arg(QRegularExpression::escape(version)),
               path);
}

bool is_this_computer(const QString& host) {
    return host == QLatin1String("localhost") || host == QLatin1String("127.0.0.1") ||
           host == QLatin1String("::1");
}

} // namespace

std::optional<version_file> version_file::of(const QByteArray& json, const QUrl& address, QString& problem) {
    const auto refuse = [&problem](const QString& why) {
        problem = QStringLiteral("What the update server sent is no version file: %1.").arg(why);
        return std::nullopt;
    };
    if (json.size() > largest)
        return refuse(QStringLiteral("it is too large"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (!document.isObject())
        return refuse(QStringLiteral("it is not JSON"));
    const QJsonObject object = document.object();

    const QString number = object.value(QStringLiteral("version")).toString();
    qsizetype behind = 0;
    const auto version = QVersionNumber::fromString(number, &behind);
    if (version.segmentCount() < 1 || version.segmentCount() > 4 || behind != number.size())
        return refuse(QStringLiteral("it names no version"));
    const QString path = object.value(QStringLiteral("archive")).toString();
    if (!is_archive_path(path, number))
        return refuse(QStringLiteral("it names no archive of this program and version"));
    const double size = object.value(QStringLiteral("size")).toDouble();
    if (!(size >= 1 && size <= static_cast<double>(largest_archive)) || size != std::floor(size))
        return refuse(QStringLiteral("the size of the archive is not between 1 byte and 1 GiB"));
    const QString digest = object.value(QStringLiteral("sha256")).toString();
    if (!matches(QStringLiteral("[0-9A-Fa-f]{%1}").arg(2 * sha256_size), digest))
        return refuse(QStringLiteral("it holds no SHA-256"));
    return version_file{version, address.resolved(QUrl(path)), path.section(u'/', -1),
                        static_cast<qint64>(size), QByteArray::fromHex(digest.toLatin1())};
}

bool may_be_asked(const QUrl& address) {
    if (!address.isValid() || address.host().isEmpty() || !address.userInfo().isEmpty())
        return false;
    return address.scheme() == QLatin1String("https") ||
           (address.scheme() == QLatin1String("http") && is_this_computer(address.host()));
}

QString update_server_problem(const QString& text) {
    const QUrl address(text.trimmed(), QUrl::StrictMode);
    const bool fits = text.size() <= longest_address && may_be_asked(address) && !address.hasQuery() &&
                      !address.hasFragment();
    return fits ? QString()
                : QStringLiteral("The address of an update server begins with https://, for example "
                                 "https://example.org/brivant-lite.");
}

QUrl version_file_address(const QString& server) {
    QString folder = server.trimmed();
    if (!folder.endsWith(u'/'))
        folder += u'/';
    return QUrl(folder + QStringLiteral("version.json"), QUrl::StrictMode);
}

} // namespace brivant
