// The string table itself: what a format of the program may rely on when it fills in a text.
#include "base/string_table.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace brivant {

namespace {

// The kinds of a text's places in order: "@@d" for "%@ ... %@ ... %d"; "%%" is none, and any other "%"
// gives "!", since nothing would fill it.
QString places_of(const QString& text) {
    QString places;
    for (qsizetype i = text.indexOf('%'); i >= 0; i = text.indexOf('%', i + 2)) {
        const QChar kind = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (kind != '%')
            places += kind == '@' || kind == 'd' ? kind : QChar('!');
    }
    return places;
}

} // namespace

TEST(string_table, every_text_has_the_places_that_its_callers_fill) {
    const QMap<QString, QString> places{
        {"TOAST_WIFI_NOT_RESP_RETRY", "@@dd"}, // address, port, seconds so far, seconds in all
        {"TOAST_BT_NOT_RESP_RETRY", "@dd"},    // device, seconds so far, seconds in all
        {"TOAST_BT_CONN_FAILED", "@"},         // device
        {"DLG_VEH_DIFF_CONTINUE", "@"},        // the vehicle's name
        {"BV_ABOUT", "@"},                     // version
        {"BV_MODE6_RESULT", "@@@@@"},          // colour, value, maximum, unit or relation, minimum
    };
    for (auto row = places.begin(); row != places.end(); ++row)
        EXPECT_EQ(places_of(localised(row.key())), row.value()) << row.key().toStdString();
    for (const QString& key : localised_keys()) {
        EXPECT_FALSE(localised(key).trimmed().isEmpty()) << key.toStdString();
        EXPECT_EQ(places_of(localised(key)), places.value(key)) << key.toStdString();
    }
}

TEST(string_table, every_line_is_a_note_or_a_key_of_its_own) {
    QFile file(":/strings/Brivant.en.strings");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    lines.removeIf([](const QString& line) { return line.startsWith('#'); });
    EXPECT_EQ(localised_keys().size(), lines.size()); // a key that stands twice would hide one text
}

TEST(string_table, help_is_html_that_shows_on_any_ground_and_loads_nothing_from_outside) {
    static const QRegularExpression unwanted(QStringLiteral("https?:|file:|color|<font|<script|href"));
    for (const QString screen : {"DIAGS", "EXPERT", "ACTIONS", "PREFS", "LOGS"}) {
        const QString hints = localised("BV_" + screen + "_HINTS");
        EXPECT_TRUE(hints.startsWith("<h3>")) << screen.toStdString();
        EXPECT_FALSE(hints.contains(unwanted)) << screen.toStdString();
        EXPECT_EQ(hints.count("<li>"), hints.count("</li>")) << screen.toStdString();
        EXPECT_NE(localised("BV_" + screen + "_TITLE"), "BV_" + screen + "_TITLE");
    }
    EXPECT_TRUE(localised("BV_PREFS_HINTS").contains("\"qrc:/artwork/prefs_wifi.gif\""));
    EXPECT_TRUE(localised("BV_PREFS_HINTS").contains("\"qrc:/artwork/main_options.png\""));
}

} // namespace brivant
