#include "base/user_defaults.h"

#include "tests/support/test_file.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

struct settings_folder {
    QTemporaryDir folder;
    QString path = folder.filePath("of the program/settings.ini");

    void write(const QByteArray& bytes) const {
        ASSERT_TRUE(QDir(folder.path()).mkpath("of the program"));
        put_file(path, bytes);
    }
    QByteArray content() const { return bytes_of(path); }
};

} // namespace

TEST(settings_file, keeps_what_is_not_changed_as_it_stands) {
    const QString port = "wifi_port", address = "wifi_IP";
    const struct {
        QByteArray before;
        ini_changes changes;
        QByteArray after;
    } cases[] = {
        {"", {{port, 7}, {address, "10.0.0.1"}}, "[General]\nwifi_IP=10.0.0.1\nwifi_port=7\n"},
        {"; by hand\n[General]\n; \"mine\nwifi_port = 1 ; one\n\n[Other]\nwifi_port=2\n",
         {{port, 7}},
         "; by hand\n[General]\n; \"mine\nwifi_port=7\n\n[Other]\nwifi_port=2\n"},
        {"wifi_port=1\r\nwifi_IP=a\r\nwifi%5Fport=2\r\n", {{port, 7}}, "wifi_port=7\n\nwifi_IP=a\r\n\n"},
        {"[General]\nzz=\"two\nlines, wifi_port=1\"\nBV=\\\nwifi_port=2\n",
         {{port, 7}},
         "[General]\nwifi_port=7\nzz=\"two\nlines, wifi_port=1\"\nBV=\\\nwifi_port=2\n"},
        {"[Other]\na=1", {{port, 7}}, "[General]\nwifi_port=7\n[Other]\na=1\n"},
        {"[general]\na=\"open", {{port, 7}}, "[general]\na=\"open\"\nwifi_port=7\n"},
        {"[General]\na=1\nwifi_port=2\n", {{port, std::nullopt}}, "[General]\na=1\n"},
        {"no settings at all\n", {{port, std::nullopt}}, "no settings at all\n"},
    };
    for (const auto& [before, changes, after] : cases)
        EXPECT_EQ(with_changed_keys(before, changes), after) << before.constData();
}

TEST(settings_file, is_read_as_it_was_written) {
    const settings_folder t;
    const QString texts[] = {"plain",      " blanks ",  "a;b,c=d",     "\"quoted\"", "C:\\new",
                             "@Invalid()", "@@",        "line\nend\t", "Grüße 🚗",    "\u00011f",
                             "",           "[General]", "#x",          "%d"};
    for (const QString& text : texts) {
        user_defaults(t.path).set(setting::bluetooth_name, text);
        user_defaults(t.path).set(setting::expert_history, {"first", text});
        const user_defaults read(t.path);
        EXPECT_EQ(read.value(setting::bluetooth_name), text) << text.toStdString();
        EXPECT_EQ(read.value(setting::expert_history), QStringList({"first", text})) << text.toStdString();
    }
    user_defaults(t.path).set(setting::expert_history, {});
    EXPECT_EQ(user_defaults(t.path).value(setting::expert_history), QStringList());
    // As Qt writes them, in a file of an older version.
    const QStringList all(std::begin(texts), std::end(texts));
    QSettings older(t.folder.filePath("older.ini"), QSettings::IniFormat);
    older.setValue(setting::expert_history.key, all);
    older.sync();
    user_defaults(older.fileName()).set(setting::wifi_port, "7");
    EXPECT_EQ(user_defaults(older.fileName()).value(setting::expert_history), all);
}

TEST(settings_file, of_two_programs_loses_no_key) {
    const settings_folder t;
    user_defaults window(t.path), terminal(t.path);
    window.set(setting::metric_units, true);
    terminal.set(setting::wifi_port, "7");
    EXPECT_TRUE(terminal.synchronise() && window.synchronise());
    terminal.set(setting::log_runs, true);
    EXPECT_TRUE(terminal.synchronise());
    EXPECT_EQ(window.value(setting::wifi_port), "7");
    EXPECT_TRUE(terminal.value(setting::metric_units));
    EXPECT_EQ(t.content(), "[General]\nBV_log_runs=true\nBV_metric_units=true\nwifi_port=7\n");

    // Another one that does not come to an end, and what an older version left, of another computer.
    put_file(t.path + ".lock", "1\nprogram\nelsewhere\n");
    const QByteArray folder = QFile::encodeName(QFileInfo(t.path).path());
    const int held = open(folder.constData(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    QElapsedTimer taken;
    taken.start();
    window.set(setting::wifi_port, "8");
    EXPECT_FALSE(window.synchronise());
    EXPECT_LT(taken.elapsed(), 4000);
    EXPECT_TRUE(window.problem().contains("another program")) << window.problem().toStdString();
    EXPECT_TRUE(t.content().contains("wifi_port=7"));
    close(held);
    taken.start();
    EXPECT_TRUE(window.synchronise());
    EXPECT_LT(taken.elapsed(), 1000);
    EXPECT_TRUE(t.content().contains("wifi_port=8") && window.problem().isEmpty());
}

TEST(settings_file, that_is_none) {
    const struct {
        const char* what;
        void (*make)(const char* path);
        const char* reason;
    } cases[] = {
        {"folder", [](const char* path) { mkdir(path, 0700); }, "it is a folder"},
        {"pipe", [](const char* path) { mkfifo(path, 0600); }, "it is a device"},
        {"link to a device", [](const char* path) { EXPECT_EQ(symlink("/dev/null", path), 0); },
         "it is a device"},
        {"link to nothing", [](const char* path) { EXPECT_EQ(symlink("/nowhere/x", path), 0); },
         "it is a link that leads nowhere"},
        {"large",
         [](const char* path) {
             put_file(path);
             truncate(path, 1 << 30);
         },
         "it is too large for settings"},
    };
    for (const auto& [what, make, reason] : cases) {
        const settings_folder t;
        t.write("");
        QFile::remove(t.path);
        make(QFile::encodeName(t.path).constData());
        struct stat before {
        }, after{};
        lstat(QFile::encodeName(t.path).constData(), &before);
        user_defaults defaults(t.path);
        EXPECT_EQ(defaults.value(setting::wifi_port), setting::wifi_port.first_value());
        defaults.set(setting::wifi_port, "7");
        EXPECT_FALSE(defaults.synchronise()) << what;
        EXPECT_EQ(defaults.problem(),
                  QStringLiteral("The settings file %1 cannot be written: %2.").arg(t.path, reason));
        lstat(QFile::encodeName(t.path).constData(), &after);
        EXPECT_TRUE(before.st_ino == after.st_ino && before.st_mtime == after.st_mtime) << what;
    }
    // A link to a file is the person's wish: the file is changed, and the link stays.
    const settings_folder t;
    t.write("");
    QFile::remove(t.path);
    const QString real = t.folder.filePath("kept elsewhere.ini");
    put_file(real);
    ASSERT_TRUE(QFile::link(real, t.path));
    user_defaults(t.path).set(setting::wifi_port, "7");
    EXPECT_TRUE(QFileInfo(t.path).isSymLink());
    EXPECT_EQ(t.content(), "[General]\nwifi_port=7\n");
}

} // namespace brivant
