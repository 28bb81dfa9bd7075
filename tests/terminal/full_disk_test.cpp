#include "tests/support/http_server.h"
#include "tests/support/test_file.h"
#include "tests/terminal/cli_process.h"

#include <QDir>
#include <QDirIterator>
#include <sys/stat.h>

namespace brivant {

// Every job that makes a file, with a disk that is full at one change to a file after the other, or from
// there on: the file is the old one or the new one, nothing stays beside it, and what is said is true.

namespace {

struct profile_with_a_run {
    QTemporaryDir folder{QDir("/dev/shm").exists() ? "/dev/shm/brivant-XXXXXX"
                                                   : QDir::tempPath() + "/brivant-XXXXXX"};
    QTemporaryDir outside; // for what the test itself writes

    profile_with_a_run() {
        EXPECT_EQ(
            cli_process(words({"--demo", "log", "--pids", "0C,0D", "--sweeps", "300", "--store"})).status(),
            0);
    }
    QStringList words(const QStringList& command) const {
        return QStringList{"--profile", folder.path()} + command;
    }
    // The files of one kind, below the profile.
    QStringList files(const QString& place, const QString& kind) const {
        const QDir its(folder.filePath(place));
        QStringList paths;
        for (const QString& name : its.entryList({kind}, QDir::Files | QDir::Hidden))
            paths += its.filePath(name);
        return paths;
    }
};

struct file_job {
    const char* name;
    QStringList words;
    QString place; // where its file is
    QString kind;
    bool replaces; // what was there before
};

void walk_through(const profile_with_a_run& home, const file_job& job, const QByteArray& variable,
                  const char* from_there_on) {
    const QStringList before = home.files(job.place, job.kind);
    const QByteArray old_bytes = before.isEmpty() ? "none" : bytes_of(before.first());
    ASSERT_EQ(cli_process(home.words(job.words)).status(), 0) << job.name;
    ASSERT_EQ(home.files(job.place, job.kind).size(), 1) << job.name;
    const QString path = home.files(job.place, job.kind).first();
    const QByteArray new_bytes = bytes_of(path);
    ASSERT_NE(new_bytes, old_bytes) << job.name;
    int struck = 0;
    for (int at = 1;; ++at) {
        QFile::remove(path);
        if (job.replaces)
            put_file(path, old_bytes);
        const faulty_disk disk{variable, QByteArray::number(at) + from_there_on,
                               home.outside.filePath("told")};
        cli_process run(home.words(job.words), disk);
        const int status = run.status();
        const std::string where = std::string(job.name) + ", " + disk.struck().toStdString();
        const QByteArray there = bytes_of(path);
        const bool is_new = there == new_bytes;
        EXPECT_TRUE(is_new || there == (job.replaces ? old_bytes : QByteArray("none")))
            << where << there.size();
        if (variable == "BV_FAIL_AT") {
            const QByteArray said = run.progress() + run.out();
            // A failure to confirm what stands there already is one, too.
            EXPECT_TRUE(status == 0 ? is_new : status == 1 && (!is_new || said.contains("does not confirm")))
                << where;
            EXPECT_TRUE(status == 0 || said.contains("No space left on device") ||
                        said.contains("disk I/O error")) // of the database
                << where << said.constData();
            EXPECT_LE(home.files(job.place, job.kind + ".*.part").size(), 0) << where;
        }
        if (disk.struck().isEmpty())
            break;
        ++struck;
    }
    EXPECT_EQ(bytes_of(path), new_bytes);
    EXPECT_EQ(home.files(job.place, job.kind + ".*.part"), QStringList()) << "what a killed one left goes";
    EXPECT_GE(struck, 4) << job.name << ": a write, two syncs and a rename at least";
    QFile::remove(path);
    if (job.replaces)
        put_file(path, old_bytes);
}

} // namespace

TEST(full_disk, leaves_the_old_file_or_the_new_one) {
    const profile_with_a_run home;
    http_server server;
    server.offer(QByteArray("new").repeated(70'000));
    ASSERT_EQ(cli_process(home.words({"settings", "set", "BV_update_server", server.address()})).status(), 0);
    ASSERT_EQ(cli_process(home.words({"--imperial", "logs", "export", "1"})).status(), 0);
    const file_job jobs[] = {
        {"setting", {"settings", "set", "wifi_IP", "10.0.0.77"}, "", "brivant-lite.ini", true},
        {"export", {"--metric", "logs", "export", "1"}, "Documents/loggies", "*.csv", true},
        {"archive", {"update-check", "download"}, "Documents", "*.zip", false},
    };
    for (const file_job& job : jobs) {
        for (const auto& [variable, from_there_on] :
             {std::pair{"BV_FAIL_AT", ""}, {"BV_FAIL_AT", "+"}, {"BV_KILL_AT", ""}})
            walk_through(home, job, variable, from_there_on);
    }
}

TEST(files, are_for_their_owner_alone) {
    const profile_with_a_run home;
    ASSERT_EQ(cli_process(home.words({"logs", "export", "1"})).status(), 0);
    ASSERT_EQ(cli_process(home.words({"--demo", "--log", "read-codes"})).status(), 0);
    const auto open_ones = [&](const QString& place) {
        QStringList open;
        QDirIterator all(home.folder.filePath(place), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                         QDirIterator::Subdirectories);
        while (all.hasNext()) {
            struct stat its {};
            stat(QFile::encodeName(all.next()).constData(), &its);
            if (its.st_mode & 077)
                open += all.fileName();
        }
        return open;
    };
    EXPECT_EQ(open_ones(""), QStringList());
    // As an older version made them.
    for (const char* path : {"application", "application/loggies", "Documents/loggies"})
        chmod(QFile::encodeName(home.folder.filePath(path)).constData(), 0755);
    QDirIterator all(home.folder.path(), QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        chmod(QFile::encodeName(all.next()).constData(), 0644);
    put_file(home.folder.filePath("Documents/letter.txt"), "the person's own");
    chmod(QFile::encodeName(home.folder.filePath("Documents/letter.txt")).constData(), 0644);
    EXPECT_EQ(cli_process(home.words({"settings", "get"})).status(), 0);
    EXPECT_EQ(open_ones(""), QStringList("letter.txt"));
}

} // namespace brivant
