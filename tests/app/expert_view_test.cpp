#include "tests/app/running_window.h"

#include <QClipboard>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextBlock>

namespace brivant {

namespace {

struct opened_console : running_window {
    opened_console() : running_window(launch_options::link_choice::demo) {
        press(Qt::Key_3, Qt::ControlModifier);
    }

    QLineEdit& line() { return part<QLineEdit>("command"); }
    QPlainTextEdit& transcript_text() { return part<QPlainTextEdit>("replyTxt"); }
    void type(const QString& text) {
        line().setText(text);
        QTest::keyClick(&line(), Qt::Key_Return);
    }
    QString told() { return part<notice_banner>().shown_text(); }
};

} // namespace

TEST(expert_view, sends_shows_and_remembers) {
    opened_console car;
    EXPECT_FALSE(car.transcript_text().isVisible()) << "words while there is nothing";
    EXPECT_TRUE(car.line().hasFocus());
    car.type(QString());
    EXPECT_TRUE(car.told().startsWith("Missing - "));
    car.type("AT I");
    EXPECT_EQ(car.line().text(), QString());
    EXPECT_TRUE(car.part<QPushButton>("stop").isVisible());
    ASSERT_TRUE(car.wait_until_idle());
    EXPECT_TRUE(car.line().hasFocus());
    car.type("AT RV");
    ASSERT_TRUE(car.wait_until_idle());
    const QStringList lines = car.transcript_text().toPlainText().split(QLatin1Char('\n'));
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines.at(0), "> AT I");
    EXPECT_TRUE(lines.contains("> AT RV"));

    const auto colour_of = [&](int block) {
        QTextCursor cursor(car.transcript_text().document()->findBlockByNumber(block));
        cursor.movePosition(QTextCursor::EndOfBlock);
        return cursor.charFormat().foreground().color();
    };
    EXPECT_NE(colour_of(0), colour_of(1));

    QTest::keyClick(&car.line(), Qt::Key_Up);
    QTest::keyClick(&car.line(), Qt::Key_Up);
    EXPECT_EQ(car.line().text(), "AT I");
    QTest::keyClick(&car.line(), Qt::Key_Down);
    EXPECT_EQ(car.line().text(), "AT RV");

    // Another screen and back: nothing is lost, and Clear empties it.
    const QString text = car.transcript_text().toPlainText();
    car.press(Qt::Key_1, Qt::ControlModifier);
    car.press(Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(car.transcript_text().toPlainText(), text);
    car.part<QPushButton>("share").findChild<QMenu*>()->actions().first()->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text().trimmed(), text.trimmed());
    car.click("clear");
    EXPECT_EQ(car.transcript_text().toPlainText(), QString());
    EXPECT_FALSE(car.transcript_text().isVisible());
}

TEST(expert_view, runs_a_script_and_stops_it) {
    opened_console car;
    car.click("script");
    auto& from = car.part<QLineEdit>("script_from");
    EXPECT_EQ(car.part<QLineEdit>("script_template").text(), "01 {L}");
    from.setText("xx");
    car.click("script_ok");
    ASSERT_TRUE(from.isVisible()) << "a wrong value keeps the card open";
    EXPECT_FALSE(from.accessibleDescription().isEmpty());
    EXPECT_TRUE(from.hasFocus());
    from.setText("0C");
    car.part<QLineEdit>("script_to").setText("0D");
    car.part<QLineEdit>("script_loops").setText("2");
    car.click("script_ok");
    ASSERT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.transcript_text().toPlainText().count("> 01 0"), 4);
    EXPECT_EQ(car.part<QLabel>("status").text(), "Current Script completed");

    car.core.expert.lines.clear();
    QTest::qWait(0); // the first card goes
    car.click("script");
    car.part<QLineEdit>("script_loops").setText("9999");
    car.click("script_ok");
    ASSERT_TRUE(QTest::qWaitFor([&] { return car.core.expert.lines.end() > 12; }));
    car.press(Qt::Key_Escape);
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    EXPECT_TRUE(car.part<QPushButton>("script").isEnabled());
}

TEST(expert_view, asks_before_a_change_that_stays) {
    opened_console car;
    car.type(" 0 4");
    EXPECT_TRUE(car.part<question_sheet>().is_open());
    car.press(Qt::Key_Return); // No
    EXPECT_FALSE(car.part<question_sheet>().is_open());
    EXPECT_TRUE(car.core.expert.lines.is_empty());
    EXPECT_EQ(car.line().text(), " 0 4") << "what was typed stays";

    car.type(" 0 4");
    QTest::keyClick(&car.part<question_sheet>(), Qt::Key_Escape);
    car.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(car.link(), link_words::condition::closed);
}

} // namespace brivant
