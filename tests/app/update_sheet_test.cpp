#include "app/update_sheet.h"

#include "tests/app/running_window.h"
#include "tests/support/http_server.h"

#include <QAction>
#include <QDir>

namespace brivant {

namespace {

struct opened_sheet : running_window {
    http_server server;
    const QByteArray archive = QByteArray("new").repeated(1000);

    void open() { part<QAction>("check_for_updates").trigger(); }
    QString words() { return part<QLabel>("update_words").text(); }
    bool says(const char* text) {
        return QTest::qWaitFor([&] { return words().contains(QLatin1String(text)); });
    }
    QStringList archives() { return QDir(core.paths.documents).entryList({"brivant-lite*"}, QDir::Files); }
};

} // namespace

TEST(update_sheet, asks_only_when_the_person_does) {
    opened_sheet program;
    program.server.offer(program.archive);
    program.open();
    EXPECT_TRUE(program.words().startsWith("No update server is set, so none was asked."));
    auto& address = program.part<QLineEdit>("update_server");
    EXPECT_TRUE(address.hasFocus());
    address.setText("http://example.org");
    QTest::keyClick(&address, Qt::Key_Return);
    EXPECT_TRUE(program.words().contains("begins with https://"));
    EXPECT_TRUE(program.server.asked.isEmpty());

    address.setText(program.server.address());
    program.click("update_check");
    ASSERT_TRUE(program.says("Version 99.1 is there"));
    EXPECT_TRUE(program.archives().isEmpty());
    program.click("update_download");
    ASSERT_TRUE(program.says("SHA-256 are right"));
    EXPECT_EQ(program.archives().size(), 1);
    program.click("update_close");
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.window->findChild<update_sheet*>() == nullptr; }));

    program.open(); // the address was kept
    EXPECT_TRUE(program.says("Version 99.1 is there"));
}

TEST(update_sheet, tells_a_wrong_archive_and_stops) {
    opened_sheet program;
    program.server.offer(program.archive, QByteArray(3000, 'x'));
    program.core.defaults.set(setting::update_server, program.server.address());
    program.open();
    ASSERT_TRUE(program.says("Version 99.1 is there"));
    program.click("update_download");
    ASSERT_TRUE(program.says("not the one that the version file tells of"));
    EXPECT_TRUE(program.part<QPushButton>("update_download").isVisible()) << "it can be tried again";

    program.server.answers.remove("/lite/brivant-lite-99.1.zip");
    program.click("update_download");
    program.click("update_stop");
    EXPECT_EQ(program.words(), "Stopped. Nothing was kept.");
    EXPECT_TRUE(program.archives().isEmpty());
}

} // namespace brivant
