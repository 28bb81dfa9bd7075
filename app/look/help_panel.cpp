#include "app/look/help_panel.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGraphicsDropShadowEffect>
#include <QHBoxLayout>
#include <QImageReader>
#include <algorithm>

namespace brivant {

namespace {

constexpr int panel_width = 440;
constexpr int icon_size = 28;
constexpr double shadow_offset = 4;
constexpr double smallest_font_tag = 0.7; // how much size=-2 and below shrink a text
const QString artwork = QStringLiteral("/artwork/");

} // namespace

help_browser::help_browser(QWidget* parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setFrameShape(QFrame::NoFrame);
    document()->setDocumentMargin(0);
}

// Stored texts come in font tags: they keep their blanks and a size that can be read.
void help_browser::set_look(const theme& look) {
    colours = look;
    document()->setDefaultStyleSheet(
        QStringLiteral("h3 { color: %1; } li { margin-bottom: 4px; } "
                       "font { font-family: '%2'; font-size: %3px; white-space: pre-wrap; }")
            .arg(look.accent.name(), QFontDatabase::systemFont(QFontDatabase::FixedFont).family())
            .arg(qRound(QFontInfo(font()).pixelSize() / smallest_font_tag)));
}

QVariant help_browser::loadResource(int type, const QUrl& name) {
    const QString path = name.path();
    if (type != QTextDocument::ImageResource || name.scheme() != QLatin1String("qrc") ||
        !path.startsWith(artwork) || path.contains(QLatin1String("..")))
        return {};
    QImageReader reader(colours.picture(path.mid(artwork.size())));
    reader.setDecideFormatFromContent(true);
    return reader.read();
}

help_panel::help_panel(QWidget* over) : overlay(over) {
    auto* card = new QFrame;
    title_label.setProperty("role", QStringLiteral("heading"));
    title_label.setTextFormat(Qt::PlainText);
    close_button.setText(QStringLiteral("\u2715"));
    close_button.setToolTip(QStringLiteral("Close (Esc)"));
    close_button.setAccessibleName(QStringLiteral("Close the help"));
    browser.setAccessibleName(QStringLiteral("Help"));

    auto* head = new QHBoxLayout;
    head->setSpacing(3 * theme::step / 2);
    head->addWidget(&icon_label);
    head->addWidget(&title_label, 1);
    head->addWidget(&close_button);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(3 * theme::step, 2 * theme::step, 2 * theme::step, 2 * theme::step);
    column->setSpacing(theme::step);
    column->addLayout(head);
    column->addWidget(&browser, 1);
    auto* room = new QVBoxLayout(this);
    room->setContentsMargins(0, 0, 0, 0);
    room->addWidget(card);

    auto* shadow = new QGraphicsDropShadowEffect(this);
    shadow->setBlurRadius(3 * theme::step);
    shadow->setOffset(0, shadow_offset);
    shadow->setColor(QColor(0, 0, 0, 90));
    setGraphicsEffect(shadow);
    connect(&close_button, &QToolButton::clicked, this, &QWidget::hide);
}

void help_panel::show_help(const QString& title, const QString& html, const QString& icon,
                           const theme& look) {
    icon_label.setPixmap(look.icon(icon).pixmap(icon_size));
    title_label.setText(title);
    browser.set_look(look);
    browser.setHtml(html);
    show_on_top();
    browser.setFocus(Qt::PopupFocusReason);
}

void help_panel::place(const QRect& room) {
    const int margin = 2 * theme::step;
    const int width = std::min(panel_width, room.width() - 2 * margin);
    setGeometry(room.width() - width - margin, margin, width, room.height() - 2 * margin);
}

} // namespace brivant
