#include "updates/update_check.h"

#include "tests/support/http_server.h"
#include "tests/support/print_qt.h"
#include "tests/support/test_file.h"

#include <QDir>
#include <QEventLoop>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

namespace {

const QByteArray content = QByteArray("an archive ").repeated(50'000);

QByteArray version_json(const QString& version, const QByteArray& archive, const QString& path = {}) {
    return QStringLiteral(R"({"version": "%1", "archive": "%2", "size": %3, "sha256": "%4", "note": []})")
        .arg(version, path.isEmpty() ? QStringLiteral("1.2/brivant-lite-%1.tar.xz").arg(version) : path,
             QString::number(archive.size()),
             QString::fromLatin1(QCryptographicHash::hash(archive, QCryptographicHash::Sha256).toHex()))
        .toUtf8();
}

QByteArray in_chunks(const QByteArray& body) {
    QByteArray answer = "HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\nHTTP/1.1 200 OK\r\nTransfer-Encoding: "
                        "chunked\r\n\r\n";
    for (qsizetype at = 0; at < body.size(); at += 70'000) {
        const QByteArray chunk = body.mid(at, 70'000);
        answer += QByteArray::number(chunk.size(), 16) + ";name=value\r\n" + chunk + "\r\n";
    }
    return answer + "0\r\nX-Sum: 1\r\n\r\n";
}

struct asked_server {
    http_server server;
    QTemporaryDir folder;
    update_check updates;
    int ends = 0;
    QString problem;

    explicit asked_server(const server_patience& patience = {}) : updates("1.1.9", patience) {
        server.answers[file_path] = http_server::ok(version_json("1.2.0", content));
        server.answers[archive_path] = http_server::ok(content);
        QObject::connect(&updates, &update_check::finished, &updates, [this](const QString& why) {
            ++ends;
            problem = why;
        });
    }

    void wait() {
        QEventLoop events;
        const int before = ends;
        while (ends == before && updates.is_running())
            events.processEvents(QEventLoop::WaitForMoreEvents);
    }
    QString check() {
        updates.check(server.address());
        wait();
        return problem;
    }
    QString download() {
        updates.download(folder.path());
        wait();
        return problem;
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    const QString file_path = "/lite/version.json";
    const QString archive_path = "/lite/1.2/brivant-lite-1.2.0.tar.xz";
};

} // namespace

TEST(update_check, fetches_a_newer_archive_whole) {
    asked_server net;
    ASSERT_EQ(net.check(), QString());
    EXPECT_TRUE(net.updates.is_newer());
    EXPECT_EQ(net.server.asked, QStringList(net.file_path)) << "the archive is not asked for by itself";

    ASSERT_EQ(net.download(), QString());
    EXPECT_EQ(net.files(), QStringList("brivant-lite-1.2.0.tar.xz"));
    EXPECT_EQ(bytes_of(net.updates.file()), content);
    EXPECT_FALSE(QFile::permissions(net.updates.file()) & QFile::ExeOwner);

    for (const QByteArray& answer :
         {in_chunks(content), QByteArray("HTTP/1.0 200 Whatever\n\n" + content)}) { // up to its end
        asked_server other;
        other.server.answers[other.archive_path] = answer;
        ASSERT_EQ(other.check(), QString());
        EXPECT_EQ(other.download(), QString());
    }
}

TEST(update_check, replaces_nothing_and_follows_no_link) {
    asked_server net;
    ASSERT_EQ(net.check(), QString());
    const QString name = net.folder.filePath("brivant-lite-1.2.0.tar.xz");
    const QString mine = net.folder.filePath("mine");
    for (const bool as_link : {true, false}) {
        const QString file = as_link ? mine : name;
        put_file(file, "mine");
        ASSERT_TRUE(!as_link || QFile::link(mine, name));
        EXPECT_TRUE(net.download().contains(as_link ? "a link has this name" : "is there already"));
        EXPECT_EQ(bytes_of(file), "mine");
        QFile::remove(name);
    }
    EXPECT_EQ(net.server.asked.size(), 1) << "the server was not asked in vain";
}

TEST(update_check, keeps_no_archive_that_is_not_the_one) {
    struct row {
        const char* name;
        QByteArray answer;
        const char* sentence;
    };
    QByteArray altered = content;
    altered[content.size() / 2] = '!';
    const QByteArray half = content.first(content.size() / 2);
    const std::vector<row> rows{
        {"altered", http_server::ok(altered), "SHA-256"},
        {"cut off", http_server::ok(half, content.size()), "cut off"},
        {"cut off, and announced so", http_server::ok(half), "cut off"},
        {"longer", http_server::ok(content + content), "larger than the version file says"},
        {"longer, in chunks", in_chunks(content + content), "larger than the version file says"},
    };
    for (const row& now : rows) {
        SCOPED_TRACE(now.name);
        asked_server net;
        net.server.answers[net.archive_path] = now.answer;
        ASSERT_EQ(net.check(), QString());
        EXPECT_TRUE(net.download().contains(QLatin1String(now.sentence))) << net.problem.toStdString();
        EXPECT_EQ(net.ends, 2);
        EXPECT_EQ(net.files(), QStringList());
        EXPECT_EQ(net.updates.file(), QString());

        net.server.answers[net.archive_path] = http_server::ok(content);
        EXPECT_EQ(net.download(), QString()) << "the next one is right";
    }
}

TEST(update_check, takes_no_version_file_it_cannot_trust) {
    const QString newer = "1.2.0";
    const auto with_path = [&](const char* path) {
        return http_server::ok(version_json(newer, content, QLatin1String(path)));
    };
    const std::vector<QByteArray> answers{
        http_server::ok("<html>not found</html>"),
        http_server::ok("[1, 2]"),
        http_server::ok(version_json("one", content)),
        http_server::ok(version_json(newer, {})),
        http_server::ok(version_json(newer, content).replace("sha256\": \"", "sha256\": \"x")),
        http_server::ok(QByteArray(version_file::largest + 1, ' ')),
        with_path("../brivant-lite-1.2.0.zip"),
        with_path("https://example.org/brivant-lite-1.2.0.zip"),
        with_path("BV_loggies_lite.db"),
        with_path("brivant-lite-1.2.0.sh"),
        with_path("brivant-lite-1.2.zip"),
        with_path("brivant-lite-1.2.0.1.zip"),
        http_server::ok(QByteArray(100, ' '), 1000),
    };
    for (const QByteArray& answer : answers) {
        asked_server net;
        net.server.answers[net.file_path] = answer;
        EXPECT_NE(net.check(), QString()) << answer.left(200).toStdString();
        EXPECT_FALSE(net.updates.is_newer());
        net.updates.download(net.folder.path());
        EXPECT_EQ(net.ends, 1);
        EXPECT_EQ(net.files(), QStringList());
    }
}

TEST(update_check, asks_nobody_but_by_a_safe_address) {
    asked_server net;
    for (const char* address : {"", "  ", "example.org", "http://example.org/lite", "ftp://127.0.0.1/",
                                "https://", "https://a:b@example.org", "https://example.org/?q"}) {
        net.updates.check(QLatin1String(address));
        EXPECT_FALSE(net.updates.is_running()) << address;
        EXPECT_NE(net.problem, QString()) << address;
    }
    EXPECT_TRUE(net.server.asked.isEmpty());
    EXPECT_EQ(update_server_problem("https://example.org:8443/a/b/"), QString());
}

// What a server may do to keep the program busy, for both things that it is asked for: each ends in a moment,
// with a sentence, and before much more has come than was announced.
TEST(update_check, bears_a_server_of_bad_manners) {
    constexpr qint64 most_over = 1'000'000;
    const QByteArray ok_head = "HTTP/1.1 200 OK\r\n";
    const QByteArray line = QByteArray(1000, 'x') + "\r\n";
    struct row {
        const char* name;
        QByteArray answer;
        QByteArray goes_on;
        int every_ms;
        const char* sentence;
    } const rows[] = {
        {"missing, with an endless page", "HTTP/1.1 404 Not Found\r\n\r\n", line, 0, "status 404"},
        {"an empty answer", "HTTP/1.1 204 No Content\r\n\r\n", "", 0, "status 204"},
        {"elsewhere, with an endless page", "HTTP/1.1 302 Found\r\nLocation: http://example.org\r\n\r\n",
         line, 0, "only https"},
        {"to a file", http_server::sent_on("file:///etc/passwd"), "", 0, "only https"},
        {"to itself", http_server::sent_on("?again"), "", 0, "again and again"},
        {"nowhere", "HTTP/1.1 302 Found\r\n\r\n", line, 0, "status 302"},
        {"no length, no end", ok_head + "\r\n", line, 0, "large"},
        {"chunks without end", ok_head + "Transfer-Encoding: chunked\r\n\r\n",
         "1;name=xxxxxxxxxxxxxx\r\nx\r\n", 0, "no end"},
        {"a chunk of a terabyte", ok_head + "Transfer-Encoding: chunked\r\n\r\nffffffffff\r\n", line, 0,
         "large"},
        {"an announced terabyte", ok_head + "Content-Length: 1000000000000\r\n\r\n", line, 0, "large"},
        {"a length of no number", ok_head + "Content-Length: -1\r\n\r\n", line, 0, "how long"},
        {"two lengths", ok_head + "Content-Length: 1\r\nContent-Length: 2\r\n\r\n", line, 0, "how long"},
        {"a head without end", ok_head, "X: " + line, 0, "no end"},
        {"a line without end", ok_head, "x", 0, "no end"},
        {"words on the way without end", "HTTP/1.1 103 Early Hints\r\n\r\n", "HTTP/1.1 100 Continue\r\n\r\n",
         0, "no end"},
        {"the name of a chunk without end", ok_head + "Transfer-Encoding: chunked\r\n\r\n1;", "x", 0,
         "no end"},
        {"packed", ok_head + "Transfer-Encoding: gzip\r\n\r\n", line, 0, "was not asked for"},
        {"something else", "SSH-2.0-server\r\n", line, 0, "does not speak HTTP"},
        {"a head a byte a time", ok_head, "x", 20, "does not answer"},
        {"a body a byte a time", ok_head + "\r\n", "x", 20, "too slowly"},
    };
    qint64 furthest = 0;
    for (const row& now : rows) {
        for (const bool is_archive : {false, true}) {
            SCOPED_TRACE(std::string(now.name) + (is_archive ? ", archive" : ", version file"));
            asked_server net({.look_ms = 150, .least_rate = 4096, .most_ms = 5000});
            ASSERT_TRUE(!is_archive || net.check().isEmpty());
            const QString path = is_archive ? net.archive_path : net.file_path;
            net.server.answers[path] = net.server.answers[path + "?again"] = now.answer;
            net.server.goes_on = now.goes_on.isEmpty() || now.every_ms > 0
                                     ? now.goes_on
                                     : now.goes_on.repeated(1 + 9000 / now.goes_on.size());
            net.server.every_ms = now.every_ms;
            const qint64 before = net.server.sent;
            const QString said = is_archive ? net.download() : net.check();
            EXPECT_TRUE(said.contains(QLatin1String(now.sentence))) << said.toStdString();
            EXPECT_TRUE(said.endsWith(u'.')) << said.toStdString();
            const qint64 over =
                net.server.sent - before - (is_archive ? content.size() : version_file::largest);
            EXPECT_LE(over, most_over);
            furthest = std::max(furthest, over);
            EXPECT_EQ(net.files(), QStringList());
        }
    }
    std::printf("[          ] at most %lld bytes more than announced were taken\n",
                static_cast<long long>(furthest));
}

// An https server whose certificate was made for this run, and who trusts it or not.
TEST(update_check, leaves_https_for_nothing_else) {
    QTemporaryDir folder;
    const QString key_file = folder.filePath("key");
    const QString certificate_file = folder.filePath("certificate");
    QProcess openssl;
    openssl.start("openssl", {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                              "-nodes", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                              "-days", "2", "-keyout", key_file, "-out", certificate_file});
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        GTEST_SKIP() << "no certificate can be made here: openssl is missing";
    QFile key(key_file);
    ASSERT_TRUE(key.open(QIODevice::ReadOnly));
    const QList<QSslCertificate> certificates = QSslCertificate::fromPath(certificate_file);
    ASSERT_EQ(certificates.size(), 1);
    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    QSslConfiguration its = usual;
    its.setLocalCertificate(certificates.first());
    its.setPrivateKey(QSslKey(key.readAll(), QSsl::Ec));

    for (const bool is_trusted : {false, true}) {
        auto listener = std::make_unique<QSslServer>();
        listener->setSslConfiguration(its);
        http_server server(std::move(listener));
        asked_server net;
        server.answers[net.file_path] = http_server::sent_on(net.server.address() + "/version.json");
        QSslConfiguration ours = usual;
        if (is_trusted)
            ours.addCaCertificate(certificates.first());
        QSslConfiguration::setDefaultConfiguration(ours);
        net.updates.check(QStringLiteral("https://127.0.0.1:%1/lite").arg(server.port()));
        net.wait();
        QSslConfiguration::setDefaultConfiguration(usual);
        EXPECT_TRUE(net.problem.contains(QLatin1String(is_trusted ? "only https is" : "could not be asked")))
            << net.problem.toStdString();
        EXPECT_EQ(server.asked.size(), is_trusted ? 1 : 0);
        EXPECT_TRUE(net.server.asked.isEmpty());
    }
}

TEST(update_check, has_a_deadline_over_all) {
    asked_server net({.look_ms = 60'000, .least_rate = 1'000'000, .most_ms = 50});
    net.server.answers[net.file_path] = "HTTP/1.1 200 OK\r\n\r\n";
    net.server.goes_on = "x";
    net.server.every_ms = 5;
    EXPECT_TRUE(net.check().contains("takes too long"));
}

TEST(update_check, is_stopped_and_does_not_wait_for_ever) {
    asked_server net({.look_ms = 50});
    net.server.answers.remove(net.file_path);
    EXPECT_TRUE(net.check().contains("does not answer"));

    asked_server stopped;
    ASSERT_EQ(stopped.check(), QString());
    stopped.server.hangs_up = false;
    stopped.server.answers[stopped.archive_path] = http_server::ok(content.first(1000), content.size());
    QObject::connect(&stopped.updates, &update_check::progress, &stopped.updates, &update_check::stop,
                     Qt::QueuedConnection);
    EXPECT_EQ(stopped.download(), "Stopped. Nothing was kept.");
    EXPECT_EQ(stopped.files(), QStringList());
}

TEST(update_check, compares_versions_number_by_number) {
    struct {
        const char* version;
        bool is_version;
        bool is_newer; // than 1.1.9
    } const rows[] = {
        {"1.1.10", true, true},      {"1.2", true, true},       {"2", true, true},
        {"1.1.9.0", true, false},    {"1.1", true, false},      {"0.9.9.9", true, false},
        {"", false, false},          {"1.", false, false},      {".1", false, false},
        {"1.2.3.4.5", false, false}, {"1.2-rc1", false, false}, {"v1", false, false},
        {"1 ", false, false},
    };
    for (const auto& row : rows) {
        asked_server net;
        net.server.answers[net.file_path] =
            http_server::ok(version_json(QLatin1String(row.version), content));
        EXPECT_EQ(net.check().isEmpty(), row.is_version) << row.version;
        EXPECT_EQ(net.updates.is_newer(), row.is_newer) << row.version;
    }
}

} // namespace brivant
