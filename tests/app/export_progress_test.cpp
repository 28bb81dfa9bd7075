#include "app/logs/export_progress.h"

#include "tests/app/running_window.h"

#include <QDir>
#include <QSignalSpy>

namespace brivant {

namespace {

// The strip on a profile of its own, with sampling runs in its database.
struct export_strip {
    QTemporaryDir folder;
    program_core core{running_window::with(launch_options::link_choice::as_stored, folder.path())};
    export_progress strip{core};
    QSignalSpy ends{&strip, &export_progress::finished};

    export_strip() { EXPECT_TRUE(core.db.init_DB()); }

    int stored(int lines, const QString& type) {
        const int id = core.db.add_2_LOG_DB(type, 1, QStringLiteral("%1 Sample points  ").arg(lines));
        for (int i = 0; i < lines; ++i)
            EXPECT_GT(core.db.append_2_LOG_DB("410D3C", QString(), i, id), 0);
        return id;
    }
    QDir loggies() const { return QDir(core.paths.documents + "/loggies"); }
    bool wait_until_ended() {
        return QTest::qWaitFor([this] { return !strip.is_running(); }, 20000);
    }
};

} // namespace

TEST(export_progress, writes_each_log_and_names_the_files) {
    export_strip t;
    const int first = t.stored(3, "Log");
    const int second = t.stored(1, "Boost");
    t.strip.start({}, false);
    EXPECT_TRUE(t.strip.isHidden());
    t.strip.start({first, second}, true);
    EXPECT_EQ(t.strip.words(), "0 of 3 lines");
    EXPECT_FALSE(t.strip.isHidden());
    t.strip.start({first}, false); // one at a time
    ASSERT_TRUE(t.wait_until_ended());
    ASSERT_EQ(t.strip.files().size(), 2);
    EXPECT_EQ(t.strip.words(), QStringLiteral("Exported to loggies folder in Documents\n\n") +
                                   t.strip.files().join(QLatin1Char('\n')));
    for (const QString& path : t.strip.files())
        EXPECT_TRUE(path.endsWith(".txt") && QFile::exists(path)) << path.toStdString();
    EXPECT_EQ(t.loggies().entryList(QDir::Files).size(), 2);
    EXPECT_EQ(t.ends.size(), 1);
}

TEST(export_progress, stopped_leaves_no_half_file) {
    export_strip t;
    const int id = t.stored(200, "Log");
    t.strip.start({id}, false);
    ASSERT_EQ(t.loggies().entryList(QDir::Files).size(), 1);
    t.strip.findChild<QPushButton*>("export_stop")->click();
    EXPECT_EQ(t.loggies().entryList(QDir::Files), QStringList());
    EXPECT_EQ(t.strip.words(), "No file was written.");
    EXPECT_EQ(t.ends.size(), 1);
    // The file that was whole before the stop stays.
    const int one = t.stored(1, "Boost");
    t.strip.start({one, id}, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !t.strip.files().isEmpty(); }, 20000));
    t.strip.stop();
    EXPECT_EQ(t.loggies().entryList(QDir::Files).size(), t.strip.files().size());
}

} // namespace brivant
