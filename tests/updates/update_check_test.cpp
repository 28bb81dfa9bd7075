#include "updates/update_check.h"

#include "tests/support/http_server.h"
#include "tests/support/print_qt.h"

#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

namespace {

const QByteArray content = QByteArray("an archive ").repeated(50'000);

QByteArray version_json(const QString& version, const QByteArray& archive,
                        const QString& path = QStringLiteral("1.2/brivant-lite-1.2.0.tar.xz")) {
    return QStringLiteral(R"({"version": "%1", "archive": "%2", "size": %3, "sha256": "%4", "note": []})")
        .arg(version, path)
        .arg(archive.size())
        .arg(QString::fromLatin1(QCryptographicHash::hash(archive, QCryptographicHash::Sha256).toHex()))
        .toUtf8();
}

struct asked_server {
    http_server server;
    QTemporaryDir folder;
    update_check updates;
    int ends = 0;
    QString problem;

    explicit asked_server(int patience_ms = update_check::usual_patience_ms)
        : updates(QStringLiteral("1.1.9"), patience_ms) {
        server.answers[file_path] = http_server::ok(version_json(QStringLiteral("1.2.0"), content));
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

    const QString file_path = QStringLiteral("/lite/version.json");
    const QString archive_path = QStringLiteral("/lite/1.2/brivant-lite-1.2.0.tar.xz");
};

} // namespace

TEST(update_check, fetches_a_newer_archive_whole) {
    asked_server net;
    ASSERT_EQ(net.check(), QString());
    EXPECT_TRUE(net.updates.is_newer());
    EXPECT_EQ(net.server.asked, QStringList(net.file_path)) << "the archive is not asked for by itself";

    ASSERT_EQ(net.download(), QString());
    EXPECT_EQ(net.files(), QStringList(QStringLiteral("brivant-lite-1.2.0.tar.xz")));
    QFile file(net.updates.file());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), content);
    EXPECT_FALSE(file.permissions() & QFile::ExeOwner);
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
        {"missing, with a long page", http_server::ok(content + content).replace("200 OK", "404 Not Found"),
         "could not be asked"},
        {"sent on elsewhere", http_server::sent_on(QStringLiteral("http://example.org/x")), "only https"},
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
    const QString newer = QStringLiteral("1.2.0");
    const auto with_path = [&](const char* path) {
        return http_server::ok(version_json(newer, content, QLatin1String(path)));
    };
    const std::vector<QByteArray> answers{
        http_server::ok("<html>not found</html>"),
        http_server::ok("[1, 2]"),
        http_server::ok(version_json(QStringLiteral("one"), content)),
        http_server::ok(version_json(newer, {})),
        http_server::ok(version_json(newer, content).replace("sha256\": \"", "sha256\": \"x")),
        http_server::ok(QByteArray(version_file::largest + 1, ' ')),
        with_path("../brivant-lite-1.2.0.zip"),
        with_path("https://example.org/brivant-lite-1.2.0.zip"),
        with_path("BV_loggies_lite.db"),
        with_path("brivant-lite-1.2.0.sh"),
        http_server::sent_on(QStringLiteral("http://example.org/version.json")),
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
    EXPECT_EQ(update_server_problem(QStringLiteral("https://example.org:8443/a/b/")), QString());
}

TEST(update_check, is_stopped_and_does_not_wait_for_ever) {
    asked_server net(50);
    net.server.answers.remove(net.file_path);
    EXPECT_TRUE(net.check().contains(QStringLiteral("does not answer")));

    asked_server stopped;
    ASSERT_EQ(stopped.check(), QString());
    stopped.server.hangs_up = false;
    stopped.server.answers[stopped.archive_path] = http_server::ok(content.first(1000), content.size());
    QObject::connect(&stopped.updates, &update_check::progress, &stopped.updates, &update_check::stop,
                     Qt::QueuedConnection);
    EXPECT_EQ(stopped.download(), QStringLiteral("Stopped. Nothing was kept."));
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
