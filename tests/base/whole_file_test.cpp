#include "base/whole_file.h"

#include "tests/support/test_file.h"

#include <QDir>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

const QByteArray a_lot(200'000, 'n');

struct folder_of_one {
    QTemporaryDir folder;
    QString path = folder.filePath("a file.txt");

    folder_of_one() { put("old"); }
    void put(const QByteArray& bytes) const { put_file(path, bytes); }
    QByteArray content() const { return bytes_of(path); }
    QStringList names() const {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    }
};

} // namespace

TEST(whole_file, is_the_old_one_until_the_new_one_is_whole) {
    const folder_of_one t;
    chmod(QFile::encodeName(t.path).constData(), 0644);
    {
        whole_file file(t.path);
        ASSERT_TRUE(file.begin());
        EXPECT_EQ(file.write(a_lot), a_lot.size());
        EXPECT_TRUE(file.bring_to_disk());
        EXPECT_EQ(QFile(file.part_name()).size(), a_lot.size());
        EXPECT_EQ(t.content(), "old");
        EXPECT_TRUE(file.commit());
        EXPECT_FALSE(file.commit()) << "there is nothing more to do";
    }
    EXPECT_EQ(t.content(), a_lot);
    EXPECT_EQ(QFile::permissions(t.path) & ~QFile::Permissions(0xF000), QFile::ReadUser | QFile::WriteUser);
    {
        whole_file forgotten(t.path);
        ASSERT_TRUE(forgotten.begin());
        forgotten.write("half");
    }
    EXPECT_EQ(t.content(), a_lot);
    EXPECT_EQ(t.names(), QStringList("a file.txt"));
}

TEST(whole_file, replaces_nothing_but_a_regular_file) {
    const struct {
        const char* what;
        void (*make)(const char* path);
        const char* reason;
    } cases[] = {
        {"folder", [](const char* path) { mkdir(path, 0700); }, "a folder has this name"},
        {"link", [](const char* path) { EXPECT_EQ(symlink("/dev/null", path), 0); }, "a link has this name"},
        {"pipe", [](const char* path) { mkfifo(path, 0600); }, "a device has this name"},
    };
    for (const auto& [what, make, reason] : cases) {
        const folder_of_one t;
        whole_file before(t.path);
        ASSERT_TRUE(before.begin()); // it comes between the begin and the commit
        QFile::remove(t.path);
        make(QFile::encodeName(t.path).constData());
        EXPECT_FALSE(before.commit()) << what;
        EXPECT_EQ(before.errorString(), reason);
        whole_file after(t.path);
        EXPECT_FALSE(after.begin()) << what;
        EXPECT_EQ(after.errorString(), reason);
        EXPECT_EQ(t.names(), QStringList("a file.txt")) << what;
    }
}

TEST(whole_file, takes_no_name_that_is_taken_where_that_is_asked) {
    const folder_of_one t;
    whole_file late(t.path, whole_file::existing::is_refused);
    EXPECT_FALSE(late.begin());
    EXPECT_EQ(late.errorString(), "a file of this name is there already");
    QFile::remove(t.path);
    ASSERT_TRUE(late.begin());
    t.put("another's");
    EXPECT_FALSE(late.commit());
    EXPECT_EQ(late.errorString(), "a file of this name is there already");
    EXPECT_EQ(t.content(), "another's");
    EXPECT_EQ(t.names(), QStringList("a file.txt"));
    QFile::remove(t.path);
    ASSERT_TRUE(late.begin());
    late.write("new");
    EXPECT_TRUE(late.commit());
    EXPECT_EQ(t.content(), "new");
}

TEST(whole_file, two_at_once_and_what_a_killed_one_left) {
    const folder_of_one t;
    const QString left = t.path + ".abcdef.part";
    put_file(left);
    put_file(t.path + ".part"); // the person's
    whole_file first(t.path), second(t.path);
    ASSERT_TRUE(first.begin() && second.begin());
    EXPECT_FALSE(QFile::exists(left));
    first.write("first");
    second.write("second");
    EXPECT_TRUE(first.commit());
    EXPECT_EQ(t.content(), "first");
    EXPECT_TRUE(second.commit());
    EXPECT_EQ(t.content(), "second");
    EXPECT_EQ(t.names(), QStringList({"a file.txt", "a file.txt.part"}));
}

TEST(whole_file, of_a_long_name_or_where_no_file_can_be) {
    const QTemporaryDir folder;
    const QString longest =
        folder.filePath(QString(whole_file::longest_name - 5, u'n') + "ü.md"); // 255 bytes
    whole_file file(longest);
    ASSERT_TRUE(file.begin()) << file.errorString().toStdString();
    EXPECT_TRUE(file.commit());
    EXPECT_TRUE(QFile::exists(longest));
    whole_file nowhere(folder.filePath("no folder/file"));
    EXPECT_FALSE(nowhere.begin());
    EXPECT_EQ(nowhere.errorString(), "No such file or directory");
    EXPECT_EQ(nowhere.write("text"), -1);
    EXPECT_FALSE(nowhere.commit());
}

} // namespace brivant
